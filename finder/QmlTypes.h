#pragma once

#include "finder/SnifferBlockListModel.h"
#include "finder/SnifferProxySettingsModel.h"
#include "finder/SnifferWebListModel.h"

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

} // namespace lumaro
