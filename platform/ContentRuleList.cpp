#include "platform/ContentRuleList.h"

namespace lumaro {

namespace {

QString problem(ContentRuleListError::Kind kind)
{
    switch (kind) {
    case ContentRuleListError::Kind::Cancelled:
        return QStringLiteral("The compilation was cancelled");
    case ContentRuleListError::Kind::NotAList:
        return QStringLiteral("The rules are not a JSON list of objects");
    case ContentRuleListError::Kind::TooLarge:
        return QStringLiteral("The rules are too many or too long");
    case ContentRuleListError::Kind::BadTrigger:
        return QStringLiteral("The trigger is invalid");
    case ContentRuleListError::Kind::BadFilter:
        return QStringLiteral("The address filter is invalid");
    case ContentRuleListError::Kind::BadAction:
        return QStringLiteral("The action is invalid");
    case ContentRuleListError::Kind::BadSelector:
        return QStringLiteral("The selector is invalid");
    }
    Q_UNREACHABLE();
}

} // namespace

QString ContentRuleListError::description() const
{
    const QString place = rule < 0 ? QString() : u" in rule " + QString::number(rule + 1);
    return problem(kind) + place + u'.';
}

} // namespace lumaro
