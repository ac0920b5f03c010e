#include "platform/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace lumaro {

QByteArray jsonString(const QString &text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.sliced(1).chopped(1);
}

} // namespace lumaro
