#pragma once

#include <QString>

namespace lumaro {

/// Why a recording fails, whatever the system says.
enum class RecorderError {
    playerWindowNotFound,
    playerDisplayNotFound,
    invalidCaptureArea,
    writerConfigurationFailed,
    noFramesCaptured,
};

/// An English sentence for the user.
QString description(RecorderError error);

} // namespace lumaro
