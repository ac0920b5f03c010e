#include "playlist/UrlPath.h"

#include <QStringList>

namespace lumaro {

QString lastPathComponent(const QUrl &url)
{
    const QStringList components = url.path(QUrl::FullyEncoded).split(u'/', Qt::SkipEmptyParts);
    if (components.isEmpty())
        return {};
    const QByteArray bytes = QByteArray::fromPercentEncoding(components.last().toUtf8());
    return QUtf8StringView(bytes).isValidUtf8() ? QString::fromUtf8(bytes) : QString();
}

QString pathExtension(const QUrl &url)
{
    const QString name = lastPathComponent(url);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.sliced(dot + 1).toLower() : QString();
}

} // namespace lumaro
