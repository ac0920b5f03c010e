#pragma once

#include "tests/e2e/soak/SoakWorld.h"

#include <QStringList>

namespace lumaro {

/// One thing that a user does, or that happens to one. It may find nothing to do.
struct SoakAction
{
    QString name;
    /// Returns what went wrong; empty for nothing.
    std::function<QString(SoakWorld &)> run;
};

/// All there are, in an order in which each finds something to do.
QList<SoakAction> soakActions();

} // namespace lumaro
