#pragma once

#include "platform/ScriptRunner.h"

#include <QStringList>

namespace lumaro {

/// A page that only remembers what it was told to run.
class FakeScriptRunner final : public ScriptRunner
{
public:
    void evaluate(const QString &script) override { scripts.append(script); }

    QStringList scripts;
};

} // namespace lumaro
