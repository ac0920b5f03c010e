#pragma once

#include <QString>

#include <optional>

namespace lumaro {

/// The seconds that a text such as "30m" or "1.2hr" means; empty unless that is 1 s to 999 hours.
std::optional<double> parseRecordingDuration(const QString &text);

/// Whole seconds as "59:59", from an hour on as "1:00:00".
QString formatDuration(double seconds);

} // namespace lumaro
