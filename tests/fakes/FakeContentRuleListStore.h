#pragma once

#include "platform/ContentRuleList.h"

#include <QList>

namespace lumaro {

/// Rules that do nothing.
class FakeContentRuleList final : public ContentRuleList
{
public:
    bool blocks(const ContentRequest &) const override { return false; }
    QString hidingScript() const override { return {}; }
};

/// Compilations that wait until the test ends them.
class FakeContentRuleListStore final : public ContentRuleListStore
{
public:
    Task<Result> compile(QString identifier, Rules rules, std::stop_token) override
    {
        identifiers.append(identifier);
        sources.append(rules());
        const OneShot<Result> result;
        pending.append(result);
        co_return co_await result;
    }

    /// Ends the oldest compilation with a new list.
    std::shared_ptr<const ContentRuleList> succeed()
    {
        const auto list = std::make_shared<FakeContentRuleList>();
        const OneShot<Result> waiting = pending.takeFirst();
        waiting.complete(Compiled{list});
        return list;
    }
    void fail()
    {
        const OneShot<Result> waiting = pending.takeFirst();
        waiting.complete(
            std::unexpected(ContentRuleListError{ContentRuleListError::Kind::BadFilter, 0}));
    }

    QList<QString> identifiers;
    QList<QString> sources;
    QList<OneShot<Result>> pending;
};

} // namespace lumaro
