#pragma once

#include <QObject>
#include <QString>

namespace lumaro {

/// A web view as far as its scripts are concerned. Main thread.
class ScriptRunner : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Runs `script` in the page's main frame and ignores its result and its errors.
    virtual void evaluate(const QString &script) = 0;
};

} // namespace lumaro
