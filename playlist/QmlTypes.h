#pragma once

#include "playlist/ChannelListModel.h"

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

} // namespace lumaro
