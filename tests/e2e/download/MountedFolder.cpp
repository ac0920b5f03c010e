#include "tests/e2e/download/MountedFolder.h"

#include <QFile>

#include <sys/mount.h>

namespace lumaro {

MountedFolder::MountedFolder(Kind kind)
    : m_mounted(mount("none", QFile::encodeName(m_folder.path()).constData(), "tmpfs",
                      kind == Kind::ReadOnly ? MS_RDONLY : 0, "size=1m")
                == 0)
{
}

MountedFolder::~MountedFolder()
{
    if (m_mounted)
        umount2(QFile::encodeName(m_folder.path()).constData(), MNT_DETACH);
}

} // namespace lumaro
