#include "platform/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace lumaro {

namespace {

void writeEscaped(QByteArray &json, char c)
{
    constexpr char hexDigits[] = "0123456789abcdef";
    switch (c) {
    case '"':
    case '\\':
        json += '\\';
        json += c;
        break;
    case '\b':
        json += "\\b";
        break;
    case '\f':
        json += "\\f";
        break;
    case '\n':
        json += "\\n";
        break;
    case '\r':
        json += "\\r";
        break;
    case '\t':
        json += "\\t";
        break;
    default:
        json += "\\u00";
        json += hexDigits[c >> 4];
        json += hexDigits[c & 0xf];
    }
}

} // namespace

void appendJsonString(QByteArray &json, QByteArrayView utf8)
{
    const auto mustBeEscaped = [](char c) { return uchar(c) < 0x20 || c == '"' || c == '\\'; };
    json += '"';
    const char *at = utf8.begin();
    while (true) {
        const char *const special = std::find_if(at, utf8.end(), mustBeEscaped);
        json.append(at, special - at);
        if (special == utf8.end())
            break;
        writeEscaped(json, *special);
        at = special + 1;
    }
    json += '"';
}

QByteArray jsonString(const QString &text)
{
    QByteArray json;
    appendJsonString(json, text.toUtf8());
    return json;
}

QByteArray encodedJson(const QJsonValue &value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return array.sliced(1).chopped(1);
}

QJsonValue decodedJson(const QByteArray &json)
{
    const QJsonArray array = QJsonDocument::fromJson('[' + json + ']').array();
    return array.size() == 1 ? array.first() : QJsonValue(QJsonValue::Undefined);
}

} // namespace lumaro
