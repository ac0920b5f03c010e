#include "recording/RecorderError.h"

#include <QCoreApplication>

namespace lumaro {

QString description(RecorderError error)
{
    switch (error) {
    case RecorderError::playerWindowNotFound:
        return QCoreApplication::translate("RecorderError",
                                           "The Lumaro window could not be captured.");
    case RecorderError::playerDisplayNotFound:
        return QCoreApplication::translate("RecorderError",
                                           "The display containing Lumaro could not be captured.");
    case RecorderError::invalidCaptureArea:
        return QCoreApplication::translate("RecorderError", "The video capture area is invalid.");
    case RecorderError::writerConfigurationFailed:
        return QCoreApplication::translate("RecorderError",
                                           "The MP4 recording writer could not be configured.");
    case RecorderError::noFramesCaptured:
        return QCoreApplication::translate("RecorderError", "No video frames were captured.");
    }
    Q_UNREACHABLE();
}

} // namespace lumaro
