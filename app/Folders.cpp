#include "app/Folders.h"

#include <QStandardPaths>

namespace lumaro {

Folders Folders::standard()
{
    const auto folder = [](QStandardPaths::StandardLocation location) {
        return QString(QStandardPaths::writableLocation(location) + u"/lumaro");
    };
    return {folder(QStandardPaths::GenericConfigLocation),
            folder(QStandardPaths::GenericCacheLocation),
            {QStandardPaths::writableLocation(QStandardPaths::DownloadLocation),
             QStandardPaths::writableLocation(QStandardPaths::HomeLocation)}};
}

} // namespace lumaro
