#include "playlist/UrlPath.h"

namespace lumaro {

QString lastPathComponent(const QUrl &url)
{
    QByteArray path = url.path(QUrl::FullyEncoded).toUtf8();
    while (path.endsWith('/'))
        path.chop(1);
    const QByteArray bytes =
        QByteArray::fromPercentEncoding(path.sliced(path.lastIndexOf('/') + 1));
    return QUtf8StringView(bytes).isValidUtf8() ? QString::fromUtf8(bytes) : QString();
}

QString pathExtension(const QUrl &url)
{
    const QString name = lastPathComponent(url);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.sliced(dot + 1).toLower() : QString();
}

} // namespace lumaro
