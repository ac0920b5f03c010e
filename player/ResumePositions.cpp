#include "player/ResumePositions.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace lumaro {

std::optional<FileIdentity> FileIdentity::of(const QUrl &url)
{
    if (!url.isLocalFile())
        return std::nullopt;
    const QFileInfo info(url.toLocalFile());
    if (!info.isFile())
        return std::nullopt;
    return FileIdentity{info.absoluteFilePath(), info.size(),
                        info.lastModified().toMSecsSinceEpoch()};
}

ResumePositions::ResumePositions(UserDefaults &defaults, Scheduler &scheduler)
    : m_stored(defaults, scheduler, QStringLiteral("Lumaro.Player.ResumePositions"))
{
    const QJsonValue stored = m_stored.read();
    if (!stored.isArray())
        m_stored.setAside();
    for (const QJsonValue value : stored.toArray()) {
        if (const auto entry = entryFrom(value.toObject()))
            m_entries.append(*entry);
    }
    m_entries = m_entries.last(std::min(m_entries.size(), maximum));
}

std::optional<ResumePositions::Entry> ResumePositions::entryFrom(const QJsonObject &stored)
{
    Entry entry{.file = {.path = stored.value(u"path").toString(),
                         .size = stored.value(u"size").toInteger(-1),
                         .modified = stored.value(u"modified").toInteger(-1)},
                .seconds = stored.value(u"seconds").toDouble()};
    const bool isTime = entry.seconds > 0 && entry.seconds <= latest;
    if (entry.file.path.isEmpty() || entry.file.size < 0 || !isTime)
        return std::nullopt;
    return entry;
}

std::optional<double> ResumePositions::position(const FileIdentity &file) const
{
    const auto found = std::ranges::find(m_entries, file, &Entry::file);
    return found == m_entries.end() ? std::nullopt : std::optional(found->seconds);
}

void ResumePositions::remember(const FileIdentity &file, double seconds)
{
    const Entry entry{file, seconds};
    if (!m_entries.isEmpty() && m_entries.last() == entry)
        return;
    // What the file was before it changed is of no use any more.
    m_entries.removeIf([&file](const Entry &other) { return other.file.path == file.path; });
    m_entries.append(entry);
    if (m_entries.size() > maximum)
        m_entries.removeFirst();
    store();
}

void ResumePositions::forget(const FileIdentity &file)
{
    if (m_entries.removeIf([&file](const Entry &other) { return other.file.path == file.path; }))
        store();
}

void ResumePositions::clear()
{
    if (m_entries.isEmpty())
        return;
    m_entries.clear();
    store();
}

void ResumePositions::store()
{
    m_stored.write([entries = m_entries] {
        QJsonArray array;
        for (const Entry &entry : entries) {
            array.append(QJsonObject{{QStringLiteral("path"), entry.file.path},
                                     {QStringLiteral("size"), entry.file.size},
                                     {QStringLiteral("modified"), entry.file.modified},
                                     {QStringLiteral("seconds"), entry.seconds}});
        }
        return QJsonValue(array);
    });
}

} // namespace lumaro
