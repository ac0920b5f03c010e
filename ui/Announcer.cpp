#include "ui/Announcer.h"

#include <QAccessible>

namespace lumaro {

void Announcer::announce(QQuickItem *item) const
{
    if (!item || !QAccessible::isActive())
        return;
    QAccessibleEvent event(item, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

} // namespace lumaro
