#pragma once

#include <QString>

namespace lumaro {

/// How long a download of `seconds` took, as it is told below the stream.
QString formattedDownloadDuration(double seconds);

} // namespace lumaro
