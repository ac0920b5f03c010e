#pragma once

#include "finder/SnifferProxyManager.h"

#include <QStringList>

namespace lumaro {

/// The proxy's settings as they are edited: the switch takes effect at once, the others when they
/// are confirmed. Main thread.
class SnifferProxySettingsModel : public QObject
{
    Q_OBJECT
    /// Holds the settings.
    Q_PROPERTY(lumaro::SnifferProxyManager *manager READ manager CONSTANT)
    /// The types' labels, in the order of SnifferProxyManager::ProxyType.
    Q_PROPERTY(QStringList proxyTypes READ proxyTypes CONSTANT)
    /// What the presets are called.
    Q_PROPERTY(QStringList presets READ presets CONSTANT)

    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString switchText MEMBER switchText CONSTANT)
    Q_PROPERTY(QString explanation MEMBER explanation CONSTANT)
    Q_PROPERTY(QString hostLabel MEMBER hostLabel CONSTANT)
    Q_PROPERTY(QString hostPlaceholder MEMBER hostPlaceholder CONSTANT)
    Q_PROPERTY(QString authenticationLabel MEMBER authenticationLabel CONSTANT)
    Q_PROPERTY(QString usernamePlaceholder MEMBER usernamePlaceholder CONSTANT)
    Q_PROPERTY(QString passwordPlaceholder MEMBER passwordPlaceholder CONSTANT)

public:
    /// `manager` outlives the model.
    explicit SnifferProxySettingsModel(SnifferProxyManager &manager, QObject *parent = nullptr);

    SnifferProxyManager *manager() const { return &m_manager; }
    static QStringList proxyTypes();
    static QStringList presets();

    Q_INVOKABLE void setEnabled(bool enabled);
    Q_INVOKABLE void chooseType(int index);
    /// The edited values are meant; pages load again if that makes a difference to them.
    Q_INVOKABLE void confirm();
    Q_INVOKABLE void applyPreset(int index);

    const QString title = tr("VPN / Proxy Configuration");
    const QString switchText = tr("Enable Proxy Tunnel");
    const QString explanation =
        tr("Routes all browser traffic and media streams through the proxy to unblock restricted "
           "websites. Only this player is affected; your Mac remains on its normal internet.");
    const QString hostLabel = tr("Server Address (IP / Domain)");
    const QString hostPlaceholder = tr("e.g. 127.0.0.1 or proxy.com");
    const QString authenticationLabel = tr("Authentication (Username / Password)");
    const QString usernamePlaceholder = tr("Username (optional)");
    const QString passwordPlaceholder = tr("Password (optional)");

private:
    SnifferProxyManager &m_manager;
};

} // namespace lumaro
