#pragma once

#include <QByteArray>
#include <QString>

namespace lumaro {

/// A JSON string (RFC 8259, section 7), with its quotes; for objects whose keys have an order.
QByteArray jsonString(const QString &text);

} // namespace lumaro
