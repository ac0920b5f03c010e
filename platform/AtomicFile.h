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

} // namespace lumaro
