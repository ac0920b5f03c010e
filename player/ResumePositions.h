#pragma once

#include "platform/DefaultsValue.h"

#include <QList>
#include <QUrl>

#include <optional>

namespace lumaro {

/// A local file as it is now; changed content makes another one of it.
struct FileIdentity
{
    QString path;
    qint64 size = 0; ///< bytes
    qint64 modified = 0; ///< milliseconds since 1970

    /// Empty for what is no ordinary file on this computer.
    static std::optional<FileIdentity> of(const QUrl &url);

    bool operator==(const FileIdentity &) const = default;
};

/// Where files were left, for the next start too. Of more than `maximum` files those left last are
/// kept. Main thread.
class ResumePositions
{
public:
    static constexpr qsizetype maximum = 200;
    /// Seconds: beyond any file that somebody watches.
    static constexpr double latest = 1e6;

    /// Both outlive it.
    ResumePositions(UserDefaults &defaults, Scheduler &scheduler);

    /// Seconds.
    std::optional<double> position(const FileIdentity &file) const;
    void remember(const FileIdentity &file, double seconds);
    void forget(const FileIdentity &file);
    void clear();

private:
    struct Entry
    {
        FileIdentity file;
        double seconds = 0;
        bool operator==(const Entry &) const = default;
    };

    static std::optional<Entry> entryFrom(const QJsonObject &stored);
    void store();

    DefaultsValue m_stored;
    /// Each path once, the one left last at the end.
    QList<Entry> m_entries;
};

} // namespace lumaro
