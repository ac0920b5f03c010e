#pragma once

#include "download/DownloadListModel.h"

#include <QtQml/qqml.h>

/// Makes the models known to the views by name; the models themselves know nothing of QML.
namespace lumaro {

struct M3U8DownloadManagerForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::M3U8DownloadManager)
    QML_NAMED_ELEMENT(M3U8DownloadManager)
    QML_UNCREATABLE("Made by the composition root.")
};

struct DownloadListModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::DownloadListModel)
    QML_NAMED_ELEMENT(DownloadListModel)
    QML_UNCREATABLE("Made by the composition root.")
};

} // namespace lumaro
