#pragma once

#include "platform/PlayerPage.h"

#include <QStringList>

namespace lumaro {

/// A player's page that remembers what it was told and answers when the test says so.
class FakePlayerPage final : public PlayerPage
{
public:
    void evaluate(const QString &script) override { scripts.append(script); }
    void load(const QUrl &url) override { loads.append(url.toString(QUrl::FullyEncoded)); }
    void loadHtml(const QString &html, const QUrl &base) override
    {
        loads.append(base.toString());
        page = html;
    }
    void ask(const QString &script, World askedWorld, Answer answer) override
    {
        question = script;
        world = askedWorld;
        questions.append(std::move(answer));
    }
    void setNavigationPolicy(NavigationPolicy newPolicy) override { policy = newPolicy; }

    /// Answers the oldest question; false when there is none.
    bool answer(const QVariant &value)
    {
        if (questions.isEmpty())
            return false;
        const Answer oldest = questions.takeFirst();
        oldest(value);
        return true;
    }

    QStringList loads;
    QString page;
    QStringList scripts;
    QString question;
    World world = World::Page;
    QList<Answer> questions;
    NavigationPolicy policy;
};

} // namespace lumaro
