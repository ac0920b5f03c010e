#include "platform/UserDefaults.h"

#include <QCoreApplication>

namespace lumaro {

QString UserDefaultsError::description() const
{
    switch (kind) {
    case Kind::NoSpace:
        return QCoreApplication::translate("UserDefaultsError",
                                           "There is no space left on the disk.");
    case Kind::NotPermitted:
        return QCoreApplication::translate("UserDefaultsError",
                                           "The settings folder cannot be written to.");
    case Kind::Failed:
        return QCoreApplication::translate("UserDefaultsError", "The settings could not be saved.");
    }
    Q_UNREACHABLE();
}

} // namespace lumaro
