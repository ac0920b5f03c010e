#pragma once

#include <QTemporaryDir>

namespace lumaro {

/// A folder that is a file system of its own, in memory. Where the process may not mount one,
/// isMounted() is false and the folder is an ordinary one.
class MountedFolder
{
public:
    enum class Kind {
        Small, ///< room for a mebibyte
        ReadOnly,
    };
    explicit MountedFolder(Kind kind);
    ~MountedFolder();
    MountedFolder(const MountedFolder &) = delete;
    MountedFolder &operator=(const MountedFolder &) = delete;

    bool isMounted() const { return m_mounted; }
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
    bool m_mounted = false;
};

} // namespace lumaro
