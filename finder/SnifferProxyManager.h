#pragma once

#include "finder/WebViewRegistry.h"
#include "platform/DefaultsValue.h"
#include "platform/ProxyConfiguration.h"

#include <QObject>

namespace lumaro {

/// The proxy through which the stream finder reaches the network. Settings are stored as they
/// change and take effect with applyProxyConfiguration(). Main thread.
class SnifferProxyManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isEnabled READ isEnabled WRITE setEnabled NOTIFY isEnabledChanged)
    Q_PROPERTY(ProxyType proxyType READ proxyType WRITE setProxyType NOTIFY proxyTypeChanged)
    Q_PROPERTY(QString host READ host WRITE setHost NOTIFY hostChanged)
    /// As edited, whether or not it is a port number.
    Q_PROPERTY(QString portString READ portString WRITE setPortString NOTIFY portStringChanged)
    Q_PROPERTY(QString username READ username WRITE setUsername NOTIFY usernameChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)

public:
    enum class ProxyType {
        Socks5,
        Http,
    };
    Q_ENUM(ProxyType)

    static QList<ProxyType> proxyTypes();
    /// What it is stored and shown as.
    static QString rawValue(ProxyType type);

    /// Reads the settings and applies them. The arguments outlive the manager.
    SnifferProxyManager(UserDefaults &defaults, Scheduler &scheduler,
                        ProxyConfigurationTarget &target, QObject *parent = nullptr);

    bool isEnabled() const { return m_isEnabled; }
    void setEnabled(bool enabled);
    ProxyType proxyType() const { return m_proxyType; }
    void setProxyType(ProxyType type);
    const QString &host() const { return m_host; }
    void setHost(const QString &host);
    const QString &portString() const { return m_portString; }
    void setPortString(const QString &port);
    const QString &username() const { return m_username; }
    void setUsername(const QString &username);
    const QString &password() const { return m_password; }
    void setPassword(const QString &password);

    /// The number that the edited text is; empty when it is none.
    std::optional<qint64> port() const;

    /// The view belongs to those that are reloaded.
    void registerWebView(WebView *view);
    void cleanRegisteredViews();

    /// The settings lead to other connections than those applied last.
    bool hasUnappliedChanges() const;
    /// Makes the settings those of all web views. Whatever is wrong with them, connections are
    /// direct.
    void applyProxyConfiguration(bool reloadActiveViews);
    /// Sets the three and applies them.
    void applyPreset(ProxyType type, const QString &host, int port);

Q_SIGNALS:
    void isEnabledChanged();
    void proxyTypeChanged();
    void hostChanged();
    void portStringChanged();
    void usernameChanged();
    void passwordChanged();

private:
    void load();
    std::optional<ProxyConfiguration> configuration() const;

    ProxyConfigurationTarget &m_target;
    WebViewRegistry m_webViews;

    bool m_isEnabled = false;
    ProxyType m_proxyType = ProxyType::Socks5;
    QString m_host;
    QString m_portString;
    QString m_username;
    QString m_password;
    std::optional<ProxyConfiguration> m_applied;

    DefaultsValue m_storedEnabled;
    DefaultsValue m_storedType;
    DefaultsValue m_storedHost;
    DefaultsValue m_storedPort;
    DefaultsValue m_storedUsername;
    DefaultsValue m_storedPassword;
};

} // namespace lumaro
