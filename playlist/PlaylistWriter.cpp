#include "playlist/PlaylistWriter.h"

#include "platform/Utf8Text.h"
#include "playlist/AddressReader.h"

#include <algorithm>

namespace lumaro {

namespace {

bool endsLine(QChar c)
{
    return (c >= u'\n' && c <= u'\r') || c == u'\u0085' || c == QChar::LineSeparator
        || c == QChar::ParagraphSeparator;
}

/// Fit to stand between quotes and at the end of a line.
QByteArray cleaned(QUtf8StringView text)
{
    QString line = text::toString(text);
    line.replace(u'"', u'\'');
    std::ranges::replace_if(line, endsLine, u' ');
    return line.toUtf8();
}

void writeAttribute(QByteArray &text, const char *name, QUtf8StringView value)
{
    if (value.isEmpty())
        return;
    text += ' ';
    text += name;
    text += "=\"";
    text += cleaned(value);
    text += '"';
}

/// Readers take a title from the first comma of its line on, and an address can do without one.
/// In others than web addresses (data:) a comma may mean something.
QByteArray logoAddress(QUtf8StringView address)
{
    QByteArray written(address.data(), address.size());
    if (written.startsWith("http"))
        written.replace(',', "%2C");
    return written;
}

/// The path of a file, unless that would be read as another address.
QByteArray addressLine(QUtf8StringView address)
{
    QByteArray absolute(address.data(), address.size());
    if (!absolute.startsWith("file:"))
        return absolute;
    const QUrl url = QUrl::fromEncoded(absolute);
    const QByteArray path = url.toLocalFile().toUtf8();
    const bool isOneLine = cleaned(path) == path && text::trimmed(path) == path;
    static const AddressReader reader(QUrl(QStringLiteral("file:///")));
    return isOneLine && reader.resolved(path) == url ? path : absolute;
}

} // namespace

QByteArray writePlaylist(const PlaylistEntries &entries)
{
    QByteArray text("#EXTM3U\n");
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const QByteArray name = cleaned(entries.name(i));
        text += "#EXTINF:-1 tvg-name=\"" + name + '"';
        writeAttribute(text, "tvg-logo", logoAddress(entries.logoAddress(i)));
        writeAttribute(text, "tvg-country", entries.countryCode(i));
        writeAttribute(text, "group-title", entries.group(i));
        text += ',' + name + '\n' + addressLine(entries.address(i)) + '\n';
    }
    return text;
}

} // namespace lumaro
