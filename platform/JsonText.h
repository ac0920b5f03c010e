#pragma once

#include <QByteArray>
#include <QString>

namespace lumaro {

/// Adds `utf8` to `json` as a JSON string (RFC 8259, section 7), with its quotes.
void appendJsonString(QByteArray &json, QByteArrayView utf8);

/// The same, by itself.
QByteArray jsonString(const QString &text);

} // namespace lumaro
