#include "download/MediaPlaylist.h"

#include "platform/Utf8Text.h"

#include <algorithm>
#include <cmath>

namespace lumaro {

namespace {

/// Anything longer counts as no address, in bytes.
constexpr qsizetype maximumAddressLength = 64 * 1024;
constexpr qsizetype maximumVariants = 10'000;

std::optional<QUrl> resolved(const QUrl &baseURL, QByteArrayView address)
{
    if (address.size() > maximumAddressLength)
        return std::nullopt;
    const QUrl url(QString::fromUtf8(address));
    if (!url.isValid())
        return std::nullopt;
    QUrl absolute = baseURL.resolved(url);
    return absolute.isValid() && !absolute.isRelative() ? std::optional(std::move(absolute))
                                                        : std::nullopt;
}

bool isPlainPathByte(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-'
        || c == '.' || c == '_' || c == '~' || c == '/';
}

/// A relative path that is one without a closer look (RFC 3986, section 4.2).
bool isPlainPath(QByteArrayView address)
{
    return address.size() <= maximumAddressLength && !address.startsWith("//")
        && std::ranges::all_of(address, isPlainPathByte);
}

bool isEncrypted(QByteArrayView keyLine)
{
    return !keyLine.toByteArray().toUpper().contains("METHOD=NONE");
}

bool hasEncryptedSegments(const QByteArray &text)
{
    text::Lines lines(text);
    while (const auto line = lines.next()) {
        if (line->startsWith("#EXT-X-KEY:") && isEncrypted(*line))
            return true;
    }
    return false;
}

/// Empty when the tag names no address.
std::optional<QUrl> mapAddress(QByteArrayView tag, const QUrl &baseURL)
{
    constexpr QByteArrayView opening = "URI=\"";
    const qsizetype found = tag.indexOf(opening);
    if (found < 0)
        return std::nullopt;
    const QByteArrayView value = tag.sliced(found + opening.size());
    const qsizetype end = value.indexOf('"');
    return end < 0 ? std::nullopt : resolved(baseURL, value.first(end));
}

/// Empty when there is no number behind the colon.
std::optional<double> tagNumber(QByteArrayView tag)
{
    bool isNumber = false;
    const double number = tag.sliced(tag.indexOf(':') + 1).toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

void readLine(QByteArrayView line, MediaPlaylist &playlist)
{
    if (line.startsWith("#EXT-X-MAP:"))
        playlist.mapURL = mapAddress(line, playlist.url).value_or(playlist.mapURL);
    else if (line.startsWith("#EXT-X-TARGETDURATION:"))
        playlist.targetDuration = tagNumber(line).value_or(playlist.targetDuration);
    else if (!line.isEmpty() && !line.startsWith('#'))
        playlist.segments.append(line);
}

} // namespace

void SegmentList::append(QByteArrayView address)
{
    if (!isPlainPath(address) && !resolved(m_baseURL, address))
        return;
    m_addresses.append(address).append('\n');
    ++m_size;
}

std::optional<QUrl> SegmentList::Reader::next()
{
    const QByteArray &addresses = m_list.m_addresses;
    if (m_position >= addresses.size())
        return std::nullopt;
    const qsizetype begin = m_position;
    const qsizetype end = addresses.indexOf('\n', begin);
    m_position = end + 1;
    return resolved(m_list.m_baseURL, QByteArrayView(addresses).sliced(begin, end - begin));
}

std::optional<qint64> integerAttribute(QStringView name, QStringView line)
{
    const qsizetype found = line.indexOf(QString(name + u'='));
    if (found < 0)
        return std::nullopt;
    const QStringView rest = line.sliced(found + name.size() + 1);
    const auto end = std::ranges::find_if_not(rest, [](QChar c) { return c.isNumber(); });
    bool isInteger = false;
    const qint64 number = rest.first(end - rest.begin()).toLongLong(&isInteger);
    return isInteger ? std::optional(number) : std::nullopt;
}

QList<Variant> parseVariants(const QByteArray &text, const QUrl &baseURL,
                             const std::stop_token &stop)
{
    QList<Variant> variants;
    // Every tag before an address means that address.
    qsizetype withoutAddress = 0;
    text::Lines lines(text);
    while (const auto line = stop.stop_requested() ? std::nullopt : lines.next()) {
        if (line->startsWith("#EXT-X-STREAM-INF:") && variants.size() < maximumVariants) {
            const QString tag = QString::fromUtf8(*line);
            variants.append({{}, integerAttribute(u"BANDWIDTH", tag).value_or(0)});
            ++withoutAddress;
        }
        const QByteArrayView address = text::trimmed(*line);
        if (withoutAddress == 0 || address.isEmpty() || address.startsWith('#'))
            continue;
        if (const auto url = resolved(baseURL, address)) {
            for (; withoutAddress > 0; --withoutAddress)
                variants[variants.size() - withoutAddress].url = *url;
        }
    }
    variants.resize(variants.size() - withoutAddress);
    return variants;
}

DownloadResult<MediaPlaylist> parseMediaPlaylist(const QByteArray &text, const QUrl &url,
                                                 const std::stop_token &stop)
{
    if (!text.contains("#EXTM3U"))
        return std::unexpected(DownloadError::invalidPlaylist);
    if (hasEncryptedSegments(text))
        return std::unexpected(DownloadError::encryptedStream);
    if (text.contains("#EXT-X-BYTERANGE"))
        return std::unexpected(DownloadError::byteRangeUnsupported);

    MediaPlaylist playlist{.url = url, .segments = SegmentList(url), .mapURL = {}};
    text::Lines lines(text);
    while (const auto line = lines.next()) {
        if (stop.stop_requested())
            return std::unexpected(HttpError{HttpError::Kind::Cancelled});
        readLine(text::trimmed(*line), playlist);
        if (playlist.segments.size() > maximumSegments)
            return std::unexpected(HttpError{HttpError::Kind::TooLarge});
    }
    if (playlist.segments.isEmpty())
        return std::unexpected(DownloadError::noSegments);
    playlist.isLive = !text.contains("#EXT-X-ENDLIST");
    return playlist;
}

} // namespace lumaro
