#include "platform/webengine/EngineProfile.h"

namespace lumaro {

EngineProfile::~EngineProfile()
{
    if (m_profile)
        m_profile->setUrlRequestInterceptor(nullptr);
}

void EngineProfile::setProfile(QQuickWebEngineProfile *profile)
{
    if (m_profile == profile)
        return;
    if (m_profile)
        m_profile->setUrlRequestInterceptor(nullptr);
    m_profile = profile;
    if (m_profile)
        m_profile->setUrlRequestInterceptor(&m_interceptor);
    Q_EMIT profileChanged();
}

} // namespace lumaro
