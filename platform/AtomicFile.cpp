#include "platform/AtomicFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace lumaro {

namespace {

using Kind = FileWriteError::Kind;

FileWriteError errorOf(const QSaveFile &file)
{
    switch (file.error()) {
    case QFileDevice::ResourceError:
        return {Kind::NoSpace, file.errorString()};
    case QFileDevice::OpenError:
    case QFileDevice::PermissionsError:
        return {Kind::NotPermitted, file.errorString()};
    default:
        return {Kind::Failed, file.errorString()};
    }
}

FileWriteError systemError(int error)
{
    return {error == ENOSPC ? Kind::NoSpace : Kind::Failed,
            QString::fromLocal8Bit(std::generic_category().message(error).c_str())};
}

/// All of it, or an error that says why: a write that a full disk cuts short reports none yet.
bool writeAll(QSaveFile &file, const QByteArray &content)
{
    qint64 written = 0;
    while (written < content.size()) {
        const qint64 count = file.write(content.constData() + written, content.size() - written);
        if (count <= 0)
            return false;
        written += count;
    }
    // Committing would not notice that the rest of a buffer has no room.
    return file.flush();
}

/// The error number; 0 for none.
int synchronize(int descriptor)
{
#ifdef Q_OS_UNIX
    return fsync(descriptor) == 0 ? 0 : errno;
#else
    Q_UNUSED(descriptor)
    return 0;
#endif
}

/// Makes a rename in `folder` outlive a power failure. Some file systems cannot do it and need not.
void synchronizeFolder(const QString &folder)
{
#ifdef Q_OS_UNIX
    const int descriptor =
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    synchronize(descriptor);
    close(descriptor);
#else
    Q_UNUSED(folder)
#endif
}

} // namespace

std::expected<void, FileWriteError> replaceFile(const QString &path, const QByteArray &content,
                                                std::optional<QFileDevice::Permissions> permissions)
{
    QSaveFile file(path);
    // Permissions come before the content, so that nobody else can read it even for a moment.
    const bool written = file.open(QIODevice::WriteOnly)
        && (!permissions || file.setPermissions(*permissions)) && writeAll(file, content);
    if (!written)
        return std::unexpected(errorOf(file));
    if (const int error = synchronize(file.handle()))
        return std::unexpected(systemError(error));
    if (!file.commit())
        return std::unexpected(errorOf(file));
    synchronizeFolder(QFileInfo(path).absolutePath());
    return {};
}

std::expected<void, FileWriteError> moveFile(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(from).toStdString(),
                            QFile::encodeName(to).toStdString(), error);
    if (!error) {
        synchronizeFolder(QFileInfo(to).absolutePath());
        return {};
    }
    if (error != std::errc::cross_device_link)
        return std::unexpected(systemError(error.value()));

    constexpr qint64 pieceSize = 1024 * 1024;
    QFile source(from);
    QSaveFile target(to);
    if (!source.open(QIODevice::ReadOnly))
        return std::unexpected(FileWriteError{Kind::Failed, source.errorString()});
    bool written = target.open(QIODevice::WriteOnly);
    while (written && !source.atEnd()) {
        const QByteArray piece = source.read(pieceSize);
        written = !piece.isEmpty() && writeAll(target, piece);
    }
    if (!written || !target.commit())
        return std::unexpected(errorOf(target));
    synchronizeFolder(QFileInfo(to).absolutePath());
    source.remove();
    return {};
}

} // namespace lumaro
