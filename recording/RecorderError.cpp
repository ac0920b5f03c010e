#include "recording/RecorderError.h"

namespace lumaro {

QString description(RecorderError error)
{
    switch (error) {
    case RecorderError::playerWindowNotFound:
        return QStringLiteral("The Lumaro window could not be captured.");
    case RecorderError::playerDisplayNotFound:
        return QStringLiteral("The display containing Lumaro could not be captured.");
    case RecorderError::invalidCaptureArea:
        return QStringLiteral("The video capture area is invalid.");
    case RecorderError::writerConfigurationFailed:
        return QStringLiteral("The MP4 recording writer could not be configured.");
    case RecorderError::noFramesCaptured:
        return QStringLiteral("No video frames were captured.");
    }
    Q_UNREACHABLE();
}

} // namespace lumaro
