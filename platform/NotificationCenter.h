#pragma once

#include <QObject>
#include <QString>

namespace lumaro {

/// The names under which views tell each other of events.
namespace notification {
/// The user clicked the picture. Object: the window, where the poster has one.
inline constexpr char16_t playerSurfaceClicked[] = u"Lumaro.playerSurfaceClicked";
/// The mouse moved. Object: the window it moved in.
inline constexpr char16_t playerMouseMoved[] = u"Lumaro.playerMouseMoved";
/// The sidebar should show the local library. No object.
inline constexpr char16_t openLocalM3UTab[] = u"Lumaro.OpenLocalM3UTab";
/// The stream finder's window is gone. No object.
inline constexpr char16_t snifferWindowDidClose[] = u"Lumaro.SnifferWindowDidClose";
} // namespace notification

/// Passes named events from whoever posts them to whoever observes them, so that neither knows
/// the other. Main thread; delivered before post() returns.
class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    Q_INVOKABLE void post(const QString &name, QObject *object = nullptr);

Q_SIGNALS:
    void posted(const QString &name, QObject *object);
};

} // namespace lumaro
