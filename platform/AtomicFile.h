#pragma once

#include <QByteArray>
#include <QFileDevice>
#include <QString>

#include <expected>
#include <optional>

namespace lumaro {

/// Why a file could not be written; what it held before is untouched.
struct FileWriteError
{
    enum class Kind {
        NoSpace,
        NotPermitted,
        Failed,
    };
    Kind kind = Kind::Failed;
    /// The platform's own words.
    QString description;

    bool operator==(const FileWriteError &) const = default;
};

/// Makes `content` the whole content of the file at `path`, on disk before it returns. Whatever
/// ends the process or the machine in between, the file then holds either this or what it held
/// before. Blocks while it writes. Any thread.
std::expected<void, FileWriteError>
replaceFile(const QString &path, const QByteArray &content,
            std::optional<QFileDevice::Permissions> permissions = std::nullopt);

/// Makes the file at `from` the file at `to`, in place of any that is there; the same holds when
/// the process or the machine ends in between. Blocks while it copies, if it must. Any thread.
std::expected<void, FileWriteError> moveFile(const QString &from, const QString &to);

} // namespace lumaro
