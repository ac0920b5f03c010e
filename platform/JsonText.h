#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>

namespace lumaro {

/// Adds `utf8` to `json` as a JSON string (RFC 8259, section 7), with its quotes.
void appendJsonString(QByteArray &json, QByteArrayView utf8);

/// The same, by itself.
QByteArray jsonString(const QString &text);

// QJsonDocument knows arrays and objects only.

/// Any value as compact JSON text.
QByteArray encodedJson(const QJsonValue &value);
/// Any value from JSON text; undefined when it is none, or more than one.
QJsonValue decodedJson(const QByteArray &json);

} // namespace lumaro
