#include "playlist/ChannelTexts.h"

#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace lumaro {

namespace {

/// Reading a pipe or a device might never end; what the kernel makes up has no size.
bool isSmallFile(const QUrl &url)
{
    constexpr qint64 largestLogo = 4 << 20;
    if (!url.isLocalFile() || !url.host().isEmpty())
        return false;
    const QFileInfo file(url.toLocalFile());
    return file.isFile() && file.size() > 0 && file.size() <= largestLogo;
}

} // namespace

QString initialOf(const QString &name)
{
    const QList<uint> codePoints = name.toUcs4();
    const auto first = std::ranges::find_if(
        codePoints, [](uint codePoint) { return QChar::isLetterOrNumber(codePoint); });
    if (first == codePoints.end())
        return {};
    const char32_t upper = QChar::toUpper(*first);
    return QString::fromUcs4(&upper, 1);
}

bool isWebAddress(QUtf8StringView address)
{
    const QByteArrayView bytes(address.data(), address.size());
    return bytes.startsWith("http://") || bytes.startsWith("https://");
}

QString logoThatMayShow(QUtf8StringView address)
{
    if (isWebAddress(address))
        return address.toString();
    const bool isFile = QByteArrayView(address.data(), address.size()).startsWith("file:");
    return isFile && isSmallFile(QUrl(address.toString())) ? address.toString() : QString();
}

} // namespace lumaro
