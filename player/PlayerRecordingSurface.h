#pragma once

#include <QObject>
#include <QPointer>
#include <QRectF>

class QQuickItem;

namespace lumaro {

/// What a view that can be recorded offers. Implemented by QObjects. Main thread.
class PlayerRecordingSurface
{
public:
    PlayerRecordingSurface() = default;
    PlayerRecordingSurface(const PlayerRecordingSurface &) = delete;
    PlayerRecordingSurface &operator=(const PlayerRecordingSurface &) = delete;
    virtual ~PlayerRecordingSurface() = default;

    virtual QQuickItem *recordingView() = 0;
    /// What of the view to record, in its own coordinates, y downwards.
    virtual QRectF recordingRectInView() const = 0;
};

/// Knows which view shows what plays; it does not keep that view alive. Main thread.
class PlayerSurfaceRegistry : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// To be called by a view when it is made and whenever it is updated.
    void setCurrentSurface(PlayerRecordingSurface *surface);
    /// To be called by a view that goes; another view that has taken its place stays.
    void clear(const PlayerRecordingSurface *surface);
    /// Null when no view shows anything.
    PlayerRecordingSurface *currentSurface() const { return m_object ? m_surface : nullptr; }

private:
    PlayerRecordingSurface *m_surface = nullptr;
    /// The same object; says whether it is still there.
    QPointer<QObject> m_object;
};

} // namespace lumaro
