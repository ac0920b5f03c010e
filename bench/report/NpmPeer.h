#pragma once

#include "bench/report/Measure.h"

#include <QJsonObject>

namespace lumaro {

/// What bench/GROUP/peer.cjs prints about the npm package `name`, which is installed when it is not
/// there yet. The script's arguments are the folder that requires the package, then `arguments`.
Measured<QJsonObject> askNpmPeer(const QString &group, const QString &name, const QString &version,
                                 const QStringList &arguments);

} // namespace lumaro
