#include "platform/BuiltInScript.h"

#include "platform/JsonText.h"

#include <QFile>

namespace lumaro {

QString builtInScript(const QString &path)
{
    QFile file(path);
    const bool opened = file.open(QIODevice::ReadOnly);
    Q_ASSERT(opened);
    return opened ? QString::fromUtf8(file.readAll()) : QString();
}

QString builtInCall(const QString &path, const QJsonArray &arguments)
{
    const QByteArray list = encodedJson(arguments).sliced(1).chopped(1);
    return builtInScript(path).trimmed() + u'(' + QString::fromUtf8(list) + u");\n";
}

} // namespace lumaro
