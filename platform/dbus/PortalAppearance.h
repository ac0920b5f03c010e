#pragma once

#include "platform/DesktopAppearance.h"

class QDBusVariant;

namespace lumaro {

/// The colour scheme that the desktop's settings portal tells (org.freedesktop.portal.Settings,
/// org.freedesktop.appearance color-scheme), as soon as it answers. Without a bus or a portal there
/// is no preference.
class PortalAppearance final : public DesktopAppearance
{
    Q_OBJECT

public:
    explicit PortalAppearance(QObject *parent = nullptr);

    ColorScheme colorScheme() const override { return m_colorScheme; }

private Q_SLOTS:
    void settingChanged(const QString &space, const QString &key, const QDBusVariant &value);

private:
    void ask();
    void setColorScheme(const QVariant &value);

    ColorScheme m_colorScheme = ColorScheme::NoPreference;
};

} // namespace lumaro
