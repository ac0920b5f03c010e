#pragma once

#include "playlist/ChannelListModel.h"
#include "playlist/LocalM3UEditor.h"
#include "playlist/LocalM3UHistory.h"
#include "playlist/LocalM3UListModel.h"

#include <QtQml/qqml.h>

/// Makes the models known to the views by name; the models themselves know nothing of QML.
namespace lumaro {

struct ChannelListModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::ChannelListModel)
    QML_NAMED_ELEMENT(ChannelListModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct LocalM3UEditorForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::LocalM3UEditor)
    QML_NAMED_ELEMENT(LocalM3UEditor)
    QML_UNCREATABLE("Made by the composition root.")
};

struct LocalM3UHistoryForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::LocalM3UHistory)
    QML_NAMED_ELEMENT(LocalM3UHistory)
    QML_UNCREATABLE("Made by the composition root.")
};

struct LocalM3UListModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::LocalM3UListModel)
    QML_NAMED_ELEMENT(LocalM3UListModel)
    QML_UNCREATABLE("Made by the composition root.")
};

} // namespace lumaro
