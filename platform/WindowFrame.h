#pragma once

#include <QJsonObject>
#include <QRect>

namespace lumaro {

/// `frame` moved, and made smaller if need be, so that it lies within `screen`.
QRect constrainedFrame(QRect frame, const QRect &screen);

/// A window's place as settings keep it; empty for what is none.
QRect frameFrom(const QJsonObject &stored);
QJsonObject storedFrame(const QRect &frame);

} // namespace lumaro
