#include "finder/SnifferNetworkMonitor.h"

#include "finder/HLSDetector.h"

#include <QTextBoundaryFinder>

namespace lumaro {

namespace {

constexpr qsizetype longestName = 120;

/// True when `text` has at most `longest` characters as a reader counts them.
bool isAtMost(const QString &text, qsizetype longest)
{
    if (text.size() <= longest)
        return true;
    // Nobody means a character of that many code units.
    constexpr qsizetype longestCharacter = 16;
    if (text.size() > longest * longestCharacter)
        return false;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count <= longest;
}

/// The name on one line; none when it says nothing or goes on too long.
std::optional<QString> cleanedName(const std::optional<QString> &name)
{
    if (!name)
        return std::nullopt;
    QString text = name->simplified();
    if (text.isEmpty() || !isAtMost(text, longestName)
        || text.compare(QLatin1StringView("video"), Qt::CaseInsensitive) == 0)
        return std::nullopt;
    return text;
}

/// What two addresses of the same playlist have in common; QUrl has lower-cased scheme and host.
QString normalizedKey(const QUrl &url)
{
    return url.adjusted(QUrl::RemoveFragment).toString(QUrl::FullyEncoded);
}

} // namespace

SnifferNetworkMonitor::SnifferNetworkMonitor(WallClock clock, QObject *parent)
    : QObject(parent)
    , m_clock(std::move(clock))
{
}

void SnifferNetworkMonitor::setSniffing(bool sniffing)
{
    if (std::exchange(m_isSniffing, sniffing) != sniffing)
        Q_EMIT isSniffingChanged();
}

void SnifferNetworkMonitor::observe(const QUrl &url, const std::optional<QString> &contentType,
                                    const std::optional<QString> &playlistText,
                                    const std::optional<QString> &displayName,
                                    bool consolidateByName)
{
    if (!m_isSniffing)
        return;
    const HLSDetector::Result result = HLSDetector::inspect(url, contentType, playlistText);
    if (!result.isHLS)
        return;

    const std::optional<QString> name = cleanedName(displayName);
    QString key = normalizedKey(url);
    const qsizetype found = find(key, consolidateByName ? name : std::nullopt);
    DetectedStream stream;
    if (found >= 0) {
        stream = m_streams.takeAt(found);
        key = m_keys.takeAt(found);
    } else {
        stream.id = QUuid::createUuid();
        stream.url = url;
    }
    if (result.type != DetectedStream::StreamType::Unknown)
        stream.type = result.type;
    if (name)
        stream.displayName = name;
    stream.detectedAt = m_clock();
    m_streams.prepend(stream);
    m_keys.prepend(key);
    Q_EMIT streamsChanged();
}

qsizetype SnifferNetworkMonitor::find(const QString &key, const std::optional<QString> &name) const
{
    for (qsizetype i = 0; i < m_streams.size(); ++i) {
        if (m_keys[i] == key || (name && m_streams[i].displayName == name))
            return i;
    }
    return -1;
}

void SnifferNetworkMonitor::observe(const ResourceMessage &message, const QString &pageTitle)
{
    const bool titled = message.title && !message.title->trimmed().isEmpty();
    observe(message.url, std::nullopt, std::nullopt, titled ? *message.title : pageTitle,
            message.selected);
}

void SnifferNetworkMonitor::clear()
{
    if (m_streams.isEmpty())
        return;
    m_streams.clear();
    m_keys.clear();
    Q_EMIT streamsChanged();
}

} // namespace lumaro
