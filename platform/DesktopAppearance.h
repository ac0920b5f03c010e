#pragma once

#include <QObject>

namespace lumaro {

/// What the user has chosen for all programs of the desktop. Main thread.
class DesktopAppearance : public QObject
{
    Q_OBJECT

public:
    enum class ColorScheme { NoPreference, Dark, Light };
    Q_ENUM(ColorScheme)

    using QObject::QObject;

    virtual ColorScheme colorScheme() const = 0;

Q_SIGNALS:
    void colorSchemeChanged();
};

} // namespace lumaro
