#pragma once

#include <QString>
#include <QStringList>

namespace lumaro {

/// Where the user's settings and the cache are kept.
struct Folders
{
    QString settings;
    QString cache;
    /// Where downloads go: the first that exists.
    QStringList downloads;
    /// Where recordings go unless the user says otherwise.
    QString movies{};

    /// Those of the XDG Base Directory Specification, and the user's own for downloads.
    static Folders standard();
};

} // namespace lumaro
