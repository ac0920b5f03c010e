#pragma once

#include <QObject>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// Lets assistive technology speak what appears without focus, such as a toast.
class Announcer : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// Speaks the accessible name of `item`, which must have one. Does nothing while no assistive
    /// technology listens.
    Q_INVOKABLE void announce(QQuickItem *item) const;
};

} // namespace lumaro
