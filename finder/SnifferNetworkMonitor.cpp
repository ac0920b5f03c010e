#include "finder/SnifferNetworkMonitor.h"

#include "finder/HLSDetector.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <functional>

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
    const qsizetype from = find(key, consolidateByName ? name : std::nullopt);
    DetectedStream stream;
    if (from >= 0) {
        stream = m_streams.takeAt(from);
        const Sighting before = m_sightings.takeAt(from);
        key = before.key;
        if (stream.displayName)
            m_numbersByName.erase({*stream.displayName, before.number});
    } else {
        stream.id = QUuid::createUuid();
        stream.url = url;
    }
    if (result.type != DetectedStream::StreamType::Unknown)
        stream.type = result.type;
    if (name)
        stream.displayName = name;
    stream.detectedAt = m_clock();

    const qint64 number = ++m_lastNumber;
    m_numbersByKey.insert(key, number);
    if (stream.displayName)
        m_numbersByName.emplace(*stream.displayName, number);
    m_sightings.prepend({number, key});
    m_streams.prepend(stream);
    Q_EMIT streamSeen(from);
    Q_EMIT streamsChanged();
}

qsizetype SnifferNetworkMonitor::placeOf(qint64 number) const
{
    const auto found =
        std::ranges::lower_bound(m_sightings, number, std::greater(), &Sighting::number);
    return found != m_sightings.cend() && found->number == number ? found - m_sightings.cbegin()
                                                                  : -1;
}

qsizetype SnifferNetworkMonitor::find(const QString &key, const std::optional<QString> &name) const
{
    qint64 number = m_numbersByKey.value(key, -1);
    if (name) {
        const auto after = m_numbersByName.upper_bound({*name, m_lastNumber});
        if (after != m_numbersByName.cbegin() && std::prev(after)->first == *name)
            number = std::max(number, std::prev(after)->second);
    }
    return placeOf(number);
}

qsizetype SnifferNetworkMonitor::indexOf(const QUrl &url) const
{
    return placeOf(m_numbersByKey.value(normalizedKey(url), -1));
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
    m_sightings.clear();
    m_numbersByKey.clear();
    m_numbersByName.clear();
    Q_EMIT cleared();
    Q_EMIT streamsChanged();
}

} // namespace lumaro
