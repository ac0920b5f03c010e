#include "finder/SnifferAdBlocker.h"

#include "finder/PageScripts.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace lumaro {

namespace {

using Words = std::initializer_list<QLatin1StringView>;

bool containsAny(const QString &text, Words words)
{
    return std::ranges::any_of(words,
                               [&text](QLatin1StringView word) { return text.contains(word); });
}

/// As much of it as the content rules look at: a page must not hold up the window by its length.
QString lowerAddress(const QUrl &url)
{
    constexpr qsizetype maximumLength = 16384;
    return url.toString(QUrl::FullyEncoded).left(maximumLength).toLower();
}

/// Streams and films are what the user came for.
bool isMedia(const QString &address)
{
    return containsAny(address,
                       {QLatin1StringView(".m3u8"), QLatin1StringView(".mp4"),
                        QLatin1StringView(".ts"), QLatin1StringView(".m4s")});
}

bool hasAdPath(const QString &address)
{
    return containsAny(address,
                       {QLatin1StringView("/adservice/"), QLatin1StringView("/pagead/"),
                        QLatin1StringView("/adsystem/"), QLatin1StringView("/popunder"),
                        QLatin1StringView("/onclickads"), QLatin1StringView("/adserver/"),
                        QLatin1StringView("/ads/banner")});
}

bool hasTrackingQuery(const QUrl &url)
{
    return containsAny(url.query(QUrl::FullyEncoded).toLower(),
                       {QLatin1StringView("aff="), QLatin1StringView("ref="),
                        QLatin1StringView("clickid="), QLatin1StringView("click_id="),
                        QLatin1StringView("subid="), QLatin1StringView("utm_source="),
                        QLatin1StringView("tag="), QLatin1StringView("bid="),
                        QLatin1StringView("ad_id="), QLatin1StringView("zoneid=")});
}

bool hasRedirectKeyword(const QString &address)
{
    return containsAny(
        address,
        {QLatin1StringView("traffic"), QLatin1StringView("onclick"), QLatin1StringView("popunder"),
         QLatin1StringView("popads"), QLatin1StringView("adserver"), QLatin1StringView("adnetwork"),
         QLatin1StringView("track"), QLatin1StringView("redirect"),
         QLatin1StringView("syndication"), QLatin1StringView("revenue"),
         QLatin1StringView("partner"), QLatin1StringView("affiliate"), QLatin1StringView("gate"),
         QLatin1StringView("smartlink"), QLatin1StringView("campaign")});
}

QString lowerHost(const QUrl &url)
{
    return url.host(QUrl::FullyEncoded).toLower();
}

/// Nothing else can be found in an address, and a domain of the user's must not make all rules fail
/// to compile.
bool isUsable(const QString &domain)
{
    constexpr qsizetype longest = 1024;
    return !domain.isEmpty() && domain.size() <= longest
        && std::ranges::none_of(domain, [](QChar c) { return c <= u' ' || c > u'~'; });
}

/// The domain that the user means; empty when it is none.
QString domainOf(const QString &text)
{
    QString domain = text.trimmed().toLower();
    const QUrl url(domain);
    if (url.isValid() && !url.host().isEmpty())
        domain = lowerHost(url);
    for (const auto prefix : {QLatin1StringView("https://"), QLatin1StringView("http://")}) {
        if (domain.startsWith(prefix))
            domain.remove(0, prefix.size());
    }
    if (domain.startsWith(QLatin1StringView("www.")))
        domain.remove(0, 4);
    // Addresses spell other scripts in ASCII.
    if (std::ranges::any_of(domain, [](QChar c) { return c > u'~'; }))
        domain = QString::fromLatin1(QUrl::toAce(domain));
    return domain.contains(u'.') && isUsable(domain) ? domain : QString();
}

QString lastTwoLabels(const QString &host)
{
    const QStringList labels = host.split(u'.', Qt::SkipEmptyParts);
    return labels.size() < 2 ? QString() : labels[labels.size() - 2] + u'.' + labels.last();
}

QJsonObject blockRule(const QString &filter)
{
    return {
        {QStringLiteral("trigger"), QJsonObject{{QStringLiteral("url-filter"), filter}}},
        {QStringLiteral("action"), QJsonObject{{QStringLiteral("type"), QStringLiteral("block")}}}};
}

QJsonObject hideRule(const QString &selector)
{
    return {
        {QStringLiteral("trigger"),
         QJsonObject{{QStringLiteral("url-filter"), QStringLiteral(".*")}}},
        {QStringLiteral("action"),
         QJsonObject{{QStringLiteral("type"), QStringLiteral("css-display-none")},
                     {QStringLiteral("selector"), selector}}},
    };
}

/// A regular expression for `text` as it stands.
QString escapedText(const QString &text)
{
    QString escaped;
    for (const QChar c : text) {
        if (QLatin1StringView("\\^$*+?.()[]{}|").contains(c))
            escaped += u'\\';
        escaped += c;
    }
    return escaped;
}

/// Any of the domains, as a regular expression; empty without one.
QString domainFilter(const QStringList &domains)
{
    QStringList escaped;
    for (const QString &domain : domains) {
        if (const QString trimmed = domain.trimmed(); isUsable(trimmed))
            escaped.append(escapedText(trimmed));
    }
    return escaped.isEmpty() ? QString() : u".*(" + escaped.join(u'|') + u").*";
}

/// Any thread.
QString rulesJSON(const QStringList &domains)
{
    QJsonArray rules;
    if (const QString filter = domainFilter(domains); !filter.isEmpty())
        rules.append(blockRule(filter));
    rules.append(blockRule(
        QStringLiteral(".*(/adservice/|/pagead/|/adsystem/|/popunder|/onclickads|/adserver/).*")));
    rules.append(hideRule(QStringLiteral(
        ".ad, .ads, .ad-banner, .advertisement, .ad-box, .ad-container, .adsbygoogle, "
        "[id^='ad_'], [id^='google_ads_'], [class*='banner-ad'], [class*='ad-banner'], "
        ".popup-overlay, .popunder, #popunder, .video-ad-overlay, .preroll-ad, .ad-overlay, "
        "iframe[src*='doubleclick'], iframe[src*='googlesyndication'], iframe[src*='popads'], "
        "iframe[src*='propeller'], iframe[src*='exoclick'], iframe[src*='adservice']")));
    return QString::fromUtf8(QJsonDocument(rules).toJson(QJsonDocument::Indented));
}

} // namespace

SnifferAdBlocker::SnifferAdBlocker(UserDefaults &defaults, Scheduler &scheduler,
                                   ContentRuleListStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_storedEnabled(defaults, scheduler, QStringLiteral("VarnAdBlockerEnabled"))
    , m_storedDomains(defaults, scheduler, QStringLiteral("VarnAdBlockerUserDomains"))
{
    load();
    compileRules();
}

SnifferAdBlocker::~SnifferAdBlocker()
{
    m_compilation.request_stop();
}

void SnifferAdBlocker::load()
{
    m_isEnabled = m_storedEnabled.read().toBool(true);
    const QJsonValue stored = m_storedDomains.read();
    const QJsonArray domains = stored.toArray();
    const bool readable = stored.isArray()
        && std::ranges::all_of(domains, [](const QJsonValue &domain) { return domain.isString(); });
    if (!readable) {
        // Nothing, or what only could not be read.
        m_mayStoreDomains = m_storedDomains.setAside();
        return;
    }
    for (const auto &domain : domains) {
        const QString text = domain.toString().trimmed().toLower();
        const QString usable = domainOf(text);
        // An empty one would be found in every address.
        if (!text.isEmpty())
            m_blockedDomains.append(usable.isEmpty() ? text : usable);
    }
}

void SnifferAdBlocker::setEnabled(bool enabled)
{
    if (std::exchange(m_isEnabled, enabled) == enabled)
        return;
    m_storedEnabled.write(enabled);
    Q_EMIT isEnabledChanged();
    const auto views = m_webViews.views();
    for (const QPointer<WebView> &view : views) {
        if (!view)
            continue;
        applyCurrentState(view);
        view->evaluate(adBlockerFlagScript(enabled));
        WebViewRegistry::reloadPage(*view);
    }
}

bool SnifferAdBlocker::addDomain(const QString &text)
{
    const QString domain = domainOf(text);
    if (domain.isEmpty() || m_blockedDomains.contains(domain))
        return false;
    m_blockedDomains.append(domain);
    Q_EMIT blockedDomainsChanged();
    saveAndRecompile();
    return true;
}

void SnifferAdBlocker::removeDomain(const QString &domain)
{
    if (m_blockedDomains.removeAll(domain) == 0)
        return;
    Q_EMIT blockedDomainsChanged();
    saveAndRecompile();
}

void SnifferAdBlocker::removeAllDomains()
{
    if (m_blockedDomains.isEmpty())
        return;
    m_blockedDomains.clear();
    Q_EMIT blockedDomainsChanged();
    saveAndRecompile();
}

void SnifferAdBlocker::saveAndRecompile()
{
    if (m_mayStoreDomains)
        m_storedDomains.write([domains = m_blockedDomains] {
            return QJsonValue(QJsonArray::fromStringList(domains));
        });
    compileRules();
    if (m_isEnabled)
        m_webViews.reloadPages();
}

QString SnifferAdBlocker::generateRulesJSON() const
{
    return rulesJSON(m_blockedDomains);
}

void SnifferAdBlocker::setCompiling(bool compiling)
{
    if (std::exchange(m_isCompiling, compiling) != compiling)
        Q_EMIT isCompilingChanged();
}

void SnifferAdBlocker::compileRules()
{
    std::exchange(m_compilation, std::stop_source()).request_stop();
    setCompiling(true);
    compile(m_compilation.get_token());
}

Task<> SnifferAdBlocker::compile(std::stop_token stop)
{
    const QString identifier = QStringLiteral("VarnAdBlocker");
    // A long list takes its time.
    const ContentRuleListStore::Rules rules = [domains = m_blockedDomains] {
        return rulesJSON(domains);
    };
    const ContentRuleListStore::Result result = co_await m_store.compile(identifier, rules, stop);
    if (stop.stop_requested())
        co_return;
    setCompiling(false);
    if (!result) {
        qWarning().noquote() << u"[SnifferAdBlocker] Failed to compile the rules: "
                + result.error().description();
        co_return;
    }
    m_ruleList = result->list;
    const auto views = m_webViews.views();
    for (const QPointer<WebView> &view : views)
        applyCurrentState(view);
}

void SnifferAdBlocker::registerAndApply(WebView *view)
{
    m_webViews.add(view);
    applyCurrentState(view);
}

void SnifferAdBlocker::applyCurrentState(WebView *view)
{
    if (!view)
        return;
    view->removeAllContentRuleLists();
    if (!m_isEnabled)
        return;
    if (m_ruleList)
        view->addContentRuleList(m_ruleList);
    else if (!m_isCompiling)
        compileRules();
}

void SnifferAdBlocker::cleanRegisteredViews()
{
    m_webViews.clean();
}

bool SnifferAdBlocker::isAdOrPopupURL(const QUrl &url) const
{
    if (!m_isEnabled)
        return false;
    const QString address = lowerAddress(url);
    if (isMedia(address))
        return false;
    // The host is part of it, unless a user name as long as that stands before the host.
    return std::ranges::any_of(
               m_blockedDomains,
               [&address](const QString &domain) { return address.contains(domain); })
        || hasAdPath(address);
}

bool SnifferAdBlocker::isSuspiciousCrossDomainRedirect(const QString &host, const QUrl &url) const
{
    const QString target = lowerHost(url);
    if (!m_isEnabled || target.isEmpty() || host.isEmpty() || isSameOrSubdomain(host, target))
        return false;
    return isAdOrPopupURL(url) || hasTrackingQuery(url) || hasRedirectKeyword(lowerAddress(url));
}

bool SnifferAdBlocker::isSameOrSubdomain(const QString &a, const QString &b)
{
    const QString one = a.toLower();
    const QString other = b.toLower();
    if (one == other)
        return true;
    if (one.isEmpty() || other.isEmpty())
        return false;
    if (one.endsWith(u'.' + other) || other.endsWith(u'.' + one))
        return true;
    const QString site = lastTwoLabels(one);
    return !site.isEmpty() && site == lastTwoLabels(other);
}

} // namespace lumaro
