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
    /// How much larger than designed text should be, beside the size of the desktop's font; 1 where
    /// everything is larger by itself.
    virtual double textScale() const = 0;

Q_SIGNALS:
    void colorSchemeChanged();
    void textScaleChanged();
};

} // namespace lumaro
