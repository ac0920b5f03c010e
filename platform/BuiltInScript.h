#pragma once

#include <QJsonArray>
#include <QString>

namespace lumaro {

/// The script (ECMAScript) that is built into the program at `path`, a resource.
QString builtInScript(const QString &path);

/// The same for a script that is one function: calls it with `arguments`.
QString builtInCall(const QString &path, const QJsonArray &arguments);

} // namespace lumaro
