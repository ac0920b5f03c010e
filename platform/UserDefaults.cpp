#include "platform/UserDefaults.h"

namespace lumaro {

QString UserDefaultsError::description() const
{
    switch (kind) {
    case Kind::NoSpace:
        return QStringLiteral("There is no space left on the disk.");
    case Kind::NotPermitted:
        return QStringLiteral("The settings folder cannot be written to.");
    case Kind::Failed:
        return QStringLiteral("The settings could not be saved.");
    }
    Q_UNREACHABLE();
}

} // namespace lumaro
