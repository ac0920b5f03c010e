#pragma once

#include "platform/DesktopAppearance.h"

class QDBusVariant;

namespace lumaro {

/// What the desktop's settings portal (org.freedesktop.portal.Settings) tells, as soon as it
/// answers: the colour scheme (org.freedesktop.appearance color-scheme), and GNOME's size of text
/// (org.gnome.desktop.interface text-scaling-factor). Without a bus or a portal there is no
/// preference, and text is as designed.
class PortalAppearance final : public DesktopAppearance
{
    Q_OBJECT

public:
    explicit PortalAppearance(QObject *parent = nullptr);

    ColorScheme colorScheme() const override { return m_colorScheme; }
    double textScale() const override { return m_textScale; }

private Q_SLOTS:
    void settingChanged(const QString &space, const QString &key, const QDBusVariant &value);

private:
    void ask(const QString &space, const QString &key);
    void learn(const QString &space, const QString &key, const QVariant &value);
    void setColorScheme(ColorScheme scheme);
    void setTextScale(double scale);

    ColorScheme m_colorScheme = ColorScheme::NoPreference;
    double m_textScale = 1;
};

} // namespace lumaro
