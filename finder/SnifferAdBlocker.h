#pragma once

#include "finder/WebViewRegistry.h"
#include "platform/ContentRuleList.h"
#include "platform/DefaultsValue.h"

#include <QObject>
#include <QStringList>

namespace lumaro {

/// Keeps advertising out of the stream finder: content rules for its web views, tests for what
/// they navigate to, and the user's list of blocked domains. Main thread.
class SnifferAdBlocker : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isEnabled READ isEnabled WRITE setEnabled NOTIFY isEnabledChanged)
    /// In the order in which they were added.
    Q_PROPERTY(QStringList blockedDomains READ blockedDomains NOTIFY blockedDomainsChanged)
    Q_PROPERTY(bool isCompiling READ isCompiling NOTIFY isCompilingChanged)

public:
    /// Reads the settings and begins to compile the rules. The arguments outlive the blocker.
    SnifferAdBlocker(UserDefaults &defaults, Scheduler &scheduler, ContentRuleListStore &store,
                     QObject *parent = nullptr);
    ~SnifferAdBlocker() override;

    bool isEnabled() const { return m_isEnabled; }
    /// Takes effect in every registered view, which loads its page again.
    void setEnabled(bool enabled);
    const QStringList &blockedDomains() const { return m_blockedDomains; }
    bool isCompiling() const { return m_isCompiling; }

    /// Adds the domain that `text` names, by itself or in an address. False, and no change, when
    /// it is none or there already.
    Q_INVOKABLE bool addDomain(const QString &text);
    Q_INVOKABLE void removeDomain(const QString &domain);
    Q_INVOKABLE void removeAllDomains();

    /// Stores the domains, and has the rules follow.
    void saveAndRecompile();
    /// Compiles the rules in place of any compilation that runs. Until it succeeds the former rules
    /// hold.
    void compileRules();
    /// The rules as JSON text for ContentRuleListStore.
    QString generateRulesJSON() const;

    /// The view follows the rules from now on.
    void registerAndApply(WebView *view);
    void applyCurrentState(WebView *view);
    void cleanRegisteredViews();

    /// True for an address of advertising, while enabled. Media never is.
    bool isAdOrPopupURL(const QUrl &url) const;
    /// True when a page on `host` that leads to `url` looks as if it were paid for it, while
    /// enabled.
    bool isSuspiciousCrossDomainRedirect(const QString &host, const QUrl &url) const;
    /// True for hosts that belong together; all hosts below the same two last labels do.
    static bool isSameOrSubdomain(const QString &a, const QString &b);

Q_SIGNALS:
    void isEnabledChanged();
    void blockedDomainsChanged();
    void isCompilingChanged();

private:
    void load();
    void setCompiling(bool compiling);
    Task<> compile(std::stop_token stop);

    ContentRuleListStore &m_store;
    WebViewRegistry m_webViews;
    bool m_isEnabled = true;
    QStringList m_blockedDomains;
    std::shared_ptr<const ContentRuleList> m_ruleList;
    bool m_isCompiling = false;
    std::stop_source m_compilation;
    DefaultsValue m_storedEnabled;
    DefaultsValue m_storedDomains;
    /// False when storing would destroy what could not be read.
    bool m_mayStoreDomains = true;
};

} // namespace lumaro
