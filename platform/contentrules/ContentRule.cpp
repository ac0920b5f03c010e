#include "platform/contentrules/ContentRule.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace lumaro::contentrules {

namespace {

using Kind = ContentRuleListError::Kind;

struct TypeName
{
    QLatin1StringView name;
    quint32 types = 0;
};

constexpr QLatin1StringView filterKey("url-filter");
constexpr QLatin1StringView caseKey("url-filter-is-case-sensitive");

constexpr quint32 bit(ResourceType type)
{
    return quint32(type);
}

constexpr std::array typeNames{
    TypeName{QLatin1StringView("document"), bit(ResourceType::Document)},
    TypeName{QLatin1StringView("image"), bit(ResourceType::Image)},
    TypeName{QLatin1StringView("style-sheet"), bit(ResourceType::StyleSheet)},
    TypeName{QLatin1StringView("script"), bit(ResourceType::Script)},
    TypeName{QLatin1StringView("font"), bit(ResourceType::Font)},
    TypeName{QLatin1StringView("media"), bit(ResourceType::Media)},
    TypeName{QLatin1StringView("svg-document"), bit(ResourceType::SvgDocument)},
    TypeName{QLatin1StringView("popup"), bit(ResourceType::Popup)},
    TypeName{QLatin1StringView("ping"), bit(ResourceType::Ping)},
    TypeName{QLatin1StringView("websocket"), bit(ResourceType::WebSocket)},
    TypeName{QLatin1StringView("fetch"), bit(ResourceType::Raw)},
    TypeName{QLatin1StringView("other"), bit(ResourceType::Raw)},
    TypeName{QLatin1StringView("raw"),
             bit(ResourceType::Raw) | bit(ResourceType::Ping) | bit(ResourceType::WebSocket)},
};

/// Leaving out a condition that we do not know would block too much.
constexpr std::array unknownConditions{
    QLatin1StringView("if-top-url"),   QLatin1StringView("unless-top-url"),
    QLatin1StringView("if-frame-url"), QLatin1StringView("unless-frame-url"),
    QLatin1StringView("load-context"),
};

/// The texts of a list; empty when it is none, or has other things or nothing in it.
std::optional<QStringList> texts(const QJsonValue &value)
{
    const QJsonArray array = value.toArray();
    QStringList list;
    for (const auto &item : array) {
        if (!item.isString())
            return std::nullopt;
        list.append(item.toString());
    }
    return list.isEmpty() ? std::nullopt : std::optional(list);
}

bool readTypes(const QJsonValue &value, Condition &condition)
{
    const auto names = texts(value);
    if (!names)
        return false;
    condition.types = 0;
    for (const QString &name : *names) {
        const auto *const known = std::ranges::find(typeNames, name, &TypeName::name);
        if (known == typeNames.end())
            return false;
        condition.types |= known->types;
    }
    return true;
}

bool readParty(const QJsonValue &value, Condition &condition)
{
    const auto names = texts(value);
    if (!names)
        return false;
    bool first = false;
    bool third = false;
    for (const QString &name : *names) {
        if (name == QLatin1StringView("first-party"))
            first = true;
        else if (name == QLatin1StringView("third-party"))
            third = true;
        else
            return false;
    }
    if (first != third)
        condition.party = first ? Condition::Party::First : Condition::Party::Third;
    return true;
}

bool readDomains(const QJsonValue &value, Condition &condition)
{
    const auto names = texts(value);
    if (!names)
        return false;
    for (const QString &name : *names) {
        const bool withSubdomains = name.startsWith(u'*');
        const QByteArray domain = name.mid(withSubdomains ? 1 : 0).toLatin1();
        const bool isPlain = !domain.isEmpty() && std::ranges::all_of(name, [](QChar c) {
            return c > u' ' && c <= u'~' && !(c >= u'A' && c <= u'Z');
        });
        if (!isPlain)
            return false;
        condition.domains.push_back({domain, withSubdomains});
    }
    return true;
}

bool readCondition(const QJsonObject &trigger, Condition &condition)
{
    for (const QLatin1StringView name : unknownConditions) {
        if (trigger.contains(name))
            return false;
    }
    const QJsonValue types = trigger.value(QLatin1StringView("resource-type"));
    const QJsonValue party = trigger.value(QLatin1StringView("load-type"));
    const QJsonValue on = trigger.value(QLatin1StringView("if-domain"));
    const QJsonValue notOn = trigger.value(QLatin1StringView("unless-domain"));
    if (!on.isUndefined() && !notOn.isUndefined())
        return false;
    condition.domainsAreExcluded = !notOn.isUndefined();
    return (types.isUndefined() || readTypes(types, condition))
        && (party.isUndefined() || readParty(party, condition))
        && (on.isUndefined() || readDomains(on, condition))
        && (notOn.isUndefined() || readDomains(notOn, condition));
}

/// True when a style sheet that begins a block with the selector contains just that block: quotes
/// and brackets are closed, and nothing outside of quotes could end the selector.
bool isSelector(const QString &text)
{
    QString open;
    QChar quote;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c < u' ')
            return false;
        if (c == u'\\') {
            ++i;
            if (i == text.size() || text[i] < u' ')
                return false;
        } else if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == u'"' || c == u'\'') {
            quote = c;
        } else if (c == u'(' || c == u'[') {
            open.append(c == u'(' ? u')' : u']');
        } else if (c == u')' || c == u']') {
            if (!open.endsWith(c))
                return false;
            open.chop(1);
        } else if (c == u'{' || c == u'}' || c == u';' || c == u'@' || c == u'<'
                   || (c == u'/' && text.mid(i + 1, 1) == u"*")) {
            return false;
        }
    }
    return quote.isNull() && open.isEmpty() && !text.trimmed().isEmpty();
}

std::expected<std::vector<UrlPattern>, Kind> readFilter(const QJsonObject &trigger)
{
    const QJsonValue filter = trigger.value(filterKey);
    const QJsonValue isCaseSensitive = trigger.value(caseKey);
    if (!filter.isString() || !(isCaseSensitive.isUndefined() || isCaseSensitive.isBool()))
        return std::unexpected(Kind::BadTrigger);
    auto patterns = readUrlFilter(filter.toString().toUtf8(), isCaseSensitive.toBool());
    if (!patterns)
        return std::unexpected(patterns.error() == UrlFilterError::Syntax ? Kind::BadFilter
                                                                          : Kind::TooLarge);
    return *std::move(patterns);
}

std::expected<ContentRule, Kind> readRule(const QJsonValue &value)
{
    if (!value.isObject())
        return std::unexpected(Kind::NotAList);
    const QJsonObject trigger = value[QLatin1StringView("trigger")].toObject();
    const QJsonObject action = value[QLatin1StringView("action")].toObject();
    auto patterns = readFilter(trigger);
    if (!patterns)
        return std::unexpected(patterns.error());
    ContentRule rule;
    rule.patterns = *std::move(patterns);
    if (!readCondition(trigger, rule.condition))
        return std::unexpected(Kind::BadTrigger);
    const QString type = action.value(QLatin1StringView("type")).toString();
    if (type == QLatin1StringView("block"))
        return rule;
    if (type != QLatin1StringView("css-display-none"))
        return std::unexpected(Kind::BadAction);
    rule.selector = action.value(QLatin1StringView("selector")).toString();
    if (!isSelector(rule.selector))
        return std::unexpected(Kind::BadSelector);
    rule.filter = trigger.value(filterKey).toString();
    rule.filterIsCaseSensitive = trigger.value(caseKey).toBool();
    return rule;
}

/// What belongs to one owner: the last two labels, or an address that is a number.
QByteArrayView siteOf(QByteArrayView host)
{
    const qsizetype last = host.lastIndexOf('.');
    const bool isNumber = host.startsWith('[')
        || (last >= 0 && last + 1 < host.size()
            && std::ranges::all_of(host.sliced(last + 1),
                                   [](char c) { return c >= '0' && c <= '9'; }));
    if (last <= 0 || isNumber)
        return host;
    const qsizetype before = host.lastIndexOf('.', last - 1);
    return host.sliced(before + 1);
}

QByteArray hostOf(const QUrl &url)
{
    return url.host(QUrl::FullyEncoded).toLatin1();
}

bool isOn(QByteArrayView host, const Domain &domain)
{
    if (!host.endsWith(domain.name))
        return false;
    const qsizetype before = host.size() - domain.name.size();
    return before == 0 || (domain.withSubdomains && host[before - 1] == '.');
}

} // namespace

RequestFacts::RequestFacts(const ContentRequest &request)
    : type(quint32(request.type))
    , page(hostOf(request.firstParty))
    , isFirstParty(page.isEmpty() || siteOf(page) == siteOf(hostOf(request.url)))
{
}

bool Condition::holds(const RequestFacts &request) const
{
    if ((types & request.type) == 0)
        return false;
    if (party != Party::Any && request.isFirstParty != (party == Party::First))
        return false;
    if (domains.empty())
        return true;
    const bool isThere = std::ranges::any_of(
        domains, [&request](const Domain &domain) { return isOn(request.page, domain); });
    return isThere != domainsAreExcluded;
}

std::expected<std::vector<ContentRule>, ContentRuleListError>
readContentRules(const QString &source)
{
    if (source.size() > maximumSourceLength)
        return std::unexpected(ContentRuleListError{Kind::TooLarge});
    const QJsonDocument document = QJsonDocument::fromJson(source.toUtf8());
    if (!document.isArray())
        return std::unexpected(ContentRuleListError{Kind::NotAList});
    const QJsonArray array = document.array();
    if (array.size() > maximumRules)
        return std::unexpected(ContentRuleListError{Kind::TooLarge});
    std::vector<ContentRule> rules;
    rules.reserve(size_t(array.size()));
    for (qsizetype i = 0; i < array.size(); ++i) {
        auto rule = readRule(array[i]);
        if (!rule)
            return std::unexpected(ContentRuleListError{rule.error(), i});
        rules.push_back(*std::move(rule));
    }
    return rules;
}

} // namespace lumaro::contentrules
