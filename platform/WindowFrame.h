#pragma once

#include <QJsonObject>
#include <QList>
#include <QRect>

namespace lumaro {

/// The screen that has most of `frame`, or else the first; there is one at least.
QRect screenOf(const QRect &frame, const QList<QRect> &screens);

/// `frame` moved, and made smaller if need be, so that it lies within `screen`.
QRect constrainedFrame(QRect frame, const QRect &screen);

/// A window's place as settings keep it; empty for what is none.
QRect frameFrom(const QJsonObject &stored);
QJsonObject storedFrame(const QRect &frame);

} // namespace lumaro
