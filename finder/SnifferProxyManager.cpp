#include "finder/SnifferProxyManager.h"

#include <QUrl>

#include <algorithm>

namespace lumaro {

namespace {

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// A decimal integer with or without a sign, nothing else.
std::optional<qint64> decimalInteger(QStringView text)
{
    const bool isSigned = text.startsWith(u'+') || text.startsWith(u'-');
    const QStringView digits = text.sliced(isSigned ? 1 : 0);
    if (!std::ranges::all_of(digits, isAsciiDigit))
        return std::nullopt;
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

/// As sockets take it, an IPv6 address without brackets; empty for no host.
QString hostIn(const QString &text)
{
    QUrl url;
    url.setHost(text.trimmed());
    return url.isValid() ? url.host() : QString();
}

} // namespace

QList<SnifferProxyManager::ProxyType> SnifferProxyManager::proxyTypes()
{
    return {ProxyType::Socks5, ProxyType::Http};
}

QString SnifferProxyManager::rawValue(ProxyType type)
{
    switch (type) {
    case ProxyType::Socks5:
        return QStringLiteral("SOCKS5");
    case ProxyType::Http:
        return QStringLiteral("HTTP / HTTPS");
    }
    Q_UNREACHABLE();
}

SnifferProxyManager::SnifferProxyManager(UserDefaults &defaults, Scheduler &scheduler,
                                         ProxyConfigurationTarget &target, QObject *parent)
    : QObject(parent)
    , m_target(target)
    , m_storedEnabled(defaults, scheduler, QStringLiteral("VarnProxyEnabled"))
    , m_storedType(defaults, scheduler, QStringLiteral("VarnProxyType"))
    , m_storedHost(defaults, scheduler, QStringLiteral("VarnProxyHost"))
    , m_storedPort(defaults, scheduler, QStringLiteral("VarnProxyPort"))
    , m_storedUsername(defaults, scheduler, QStringLiteral("VarnProxyUsername"))
    , m_storedPassword(defaults, scheduler, QStringLiteral("VarnProxyPassword"))
{
    load();
    applyProxyConfiguration(false);
}

void SnifferProxyManager::load()
{
    m_isEnabled = m_storedEnabled.read().toBool(false);
    const QString type = m_storedType.read().toString();
    for (const ProxyType known : proxyTypes()) {
        if (rawValue(known) == type)
            m_proxyType = known;
    }
    m_host = m_storedHost.read().toString(QStringLiteral("127.0.0.1"));
    const qint64 port = m_storedPort.read().toInteger();
    m_portString = port < 1 ? QStringLiteral("1080") : QString::number(port);
    m_username = m_storedUsername.read().toString();
    m_password = m_storedPassword.read().toString();
}

void SnifferProxyManager::setEnabled(bool enabled)
{
    if (std::exchange(m_isEnabled, enabled) == enabled)
        return;
    m_storedEnabled.write(enabled);
    Q_EMIT isEnabledChanged();
}

void SnifferProxyManager::setProxyType(ProxyType type)
{
    if (std::exchange(m_proxyType, type) == type)
        return;
    m_storedType.write(rawValue(type));
    Q_EMIT proxyTypeChanged();
}

void SnifferProxyManager::setHost(const QString &host)
{
    if (std::exchange(m_host, host) == host)
        return;
    m_storedHost.write(host);
    Q_EMIT hostChanged();
}

void SnifferProxyManager::setPortString(const QString &port)
{
    if (std::exchange(m_portString, port) == port)
        return;
    // A text that is no number has nothing to store; the number before it stays.
    if (const auto number = this->port())
        m_storedPort.write(*number);
    Q_EMIT portStringChanged();
}

void SnifferProxyManager::setUsername(const QString &username)
{
    if (std::exchange(m_username, username) == username)
        return;
    m_storedUsername.write(username);
    Q_EMIT usernameChanged();
}

void SnifferProxyManager::setPassword(const QString &password)
{
    if (std::exchange(m_password, password) == password)
        return;
    m_storedPassword.write(password);
    Q_EMIT passwordChanged();
}

std::optional<qint64> SnifferProxyManager::port() const
{
    return decimalInteger(QStringView(m_portString).trimmed());
}

void SnifferProxyManager::registerWebView(WebView *view)
{
    m_webViews.add(view);
}

void SnifferProxyManager::cleanRegisteredViews()
{
    m_webViews.clean();
}

std::optional<ProxyConfiguration> SnifferProxyManager::configuration() const
{
    const QString host = hostIn(m_host);
    const qint64 number = port().value_or(0);
    if (!m_isEnabled || host.isEmpty() || number < 1
        || number > std::numeric_limits<quint16>::max())
        return std::nullopt;
    ProxyConfiguration configuration;
    configuration.protocol = m_proxyType == ProxyType::Socks5
        ? ProxyConfiguration::Protocol::Socks5
        : ProxyConfiguration::Protocol::HttpConnect;
    configuration.host = host;
    configuration.port = quint16(number);
    if (!m_username.trimmed().isEmpty())
        configuration.credential = {m_username, m_password};
    return configuration;
}

bool SnifferProxyManager::hasUnappliedChanges() const
{
    return configuration() != m_applied;
}

void SnifferProxyManager::applyProxyConfiguration(bool reloadActiveViews)
{
    m_applied = configuration();
    m_target.setProxyConfigurations(m_applied ? QList{*m_applied} : QList<ProxyConfiguration>());
    if (reloadActiveViews)
        m_webViews.reloadPages();
}

void SnifferProxyManager::applyPreset(ProxyType type, const QString &host, int port)
{
    setProxyType(type);
    setHost(host);
    setPortString(QString::number(port));
    // Switched off, the proxy changes nothing for the pages.
    applyProxyConfiguration(m_isEnabled);
}

} // namespace lumaro
