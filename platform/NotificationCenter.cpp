#include "platform/NotificationCenter.h"

namespace lumaro {

void NotificationCenter::post(const QString &name, QObject *object)
{
    Q_EMIT posted(name, object);
}

} // namespace lumaro
