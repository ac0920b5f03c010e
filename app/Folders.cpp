#include "app/Folders.h"

#include <QDir>
#include <QStandardPaths>

namespace lumaro {

Folders Folders::standard()
{
    const auto folder = [](QStandardPaths::StandardLocation location) {
        return QString(QStandardPaths::writableLocation(location) + u"/lumaro");
    };
    const QString movies = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    const QString home = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    return {folder(QStandardPaths::GenericConfigLocation),
            folder(QStandardPaths::GenericCacheLocation),
            {QStandardPaths::writableLocation(QStandardPaths::DownloadLocation), home},
            QDir(movies).exists() ? movies : home};
}

} // namespace lumaro
