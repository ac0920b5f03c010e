#pragma once

#include "finder/SnifferViewModel.h"
#include "finder/SnifferWindowController.h"

#include <QtQml/qqml.h>

/// Makes the models known to the views by name; the models themselves know nothing of QML.
namespace lumaro {

struct SnifferBlockListModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferBlockListModel)
    QML_NAMED_ELEMENT(SnifferBlockListModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferProxyManagerForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferProxyManager)
    QML_NAMED_ELEMENT(SnifferProxyManager)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferProxySettingsModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferProxySettingsModel)
    QML_NAMED_ELEMENT(SnifferProxySettingsModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferWebListModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferWebListModel)
    QML_NAMED_ELEMENT(SnifferWebListModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct PageViewForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::PageView)
    QML_NAMED_ELEMENT(PageView)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferBrowserTabsForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferBrowserTabs)
    QML_NAMED_ELEMENT(SnifferBrowserTabs)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferDetectedStreamsModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferDetectedStreamsModel)
    QML_NAMED_ELEMENT(SnifferDetectedStreamsModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferManagerForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferManager)
    QML_NAMED_ELEMENT(SnifferManager)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferViewModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferViewModel)
    QML_NAMED_ELEMENT(SnifferViewModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct SnifferWindowControllerForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::SnifferWindowController)
    QML_NAMED_ELEMENT(SnifferWindowController)
    QML_UNCREATABLE("Made by the composition root.")
};

} // namespace lumaro
