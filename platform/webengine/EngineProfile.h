#pragma once

#include "platform/webengine/ContentRuleInterceptor.h"

#include <QPointer>
#include <QQuickWebEngineProfile>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// What web views with one profile share. Main thread.
class EngineProfile : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// The engine's own profile, of which this takes over the requests.
    Q_PROPERTY(QQuickWebEngineProfile *profile READ profile WRITE setProfile NOTIFY profileChanged)

public:
    using QObject::QObject;
    ~EngineProfile() override;

    QQuickWebEngineProfile *profile() const { return m_profile; }
    void setProfile(QQuickWebEngineProfile *profile);
    ContentRuleInterceptor &interceptor() { return m_interceptor; }

Q_SIGNALS:
    void profileChanged();

private:
    QPointer<QQuickWebEngineProfile> m_profile;
    ContentRuleInterceptor m_interceptor;
};

} // namespace lumaro
