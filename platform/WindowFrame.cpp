#include "platform/WindowFrame.h"

#include <algorithm>

namespace lumaro {

QRect screenOf(const QRect &frame, const QList<QRect> &screens)
{
    const auto shared = [&frame](const QRect &screen) {
        const QSize size = screen.intersected(frame).size();
        return size.isEmpty() ? 0 : qint64(size.width()) * size.height();
    };
    return *std::ranges::max_element(screens, {}, shared);
}

QRect constrainedFrame(QRect frame, const QRect &screen)
{
    frame.setSize(frame.size().boundedTo(screen.size()));
    frame.moveLeft(qBound(screen.left(), frame.left(), screen.right() - frame.width() + 1));
    frame.moveTop(qBound(screen.top(), frame.top(), screen.bottom() - frame.height() + 1));
    return frame;
}

QRect frameFrom(const QJsonObject &stored)
{
    // Farther out there is no screen, and arithmetic with such numbers is not safe.
    const int farthest = 1'000'000;
    const auto number = [&stored, farthest](QLatin1StringView name) {
        return qBound(-farthest, stored.value(name).toInt(), farthest);
    };
    const QRect frame(number(QLatin1StringView("x")), number(QLatin1StringView("y")),
                      number(QLatin1StringView("width")), number(QLatin1StringView("height")));
    return frame.isValid() ? frame : QRect();
}

QJsonObject storedFrame(const QRect &frame)
{
    return {{QStringLiteral("x"), frame.x()},
            {QStringLiteral("y"), frame.y()},
            {QStringLiteral("width"), frame.width()},
            {QStringLiteral("height"), frame.height()}};
}

} // namespace lumaro
