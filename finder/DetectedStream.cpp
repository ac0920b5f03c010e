#include "finder/DetectedStream.h"

namespace lumaro {

QString DetectedStream::rawValue(StreamType type)
{
    switch (type) {
    case StreamType::Master:
        return QStringLiteral("master");
    case StreamType::Variant:
        return QStringLiteral("variant");
    case StreamType::Unknown:
        return QStringLiteral("unknown");
    }
    Q_UNREACHABLE();
}

std::optional<DetectedStream::StreamType> DetectedStream::typeFromRawValue(QStringView text)
{
    for (const StreamType type : {StreamType::Master, StreamType::Variant, StreamType::Unknown}) {
        if (rawValue(type) == text)
            return type;
    }
    return std::nullopt;
}

} // namespace lumaro
