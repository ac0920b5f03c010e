#pragma once

#include "platform/ProxyConfiguration.h"

namespace lumaro {

/// Remembers every list of configurations it was given.
class FakeProxyConfigurationTarget final : public ProxyConfigurationTarget
{
public:
    void setProxyConfigurations(const QList<ProxyConfiguration> &configurations) override
    {
        applied.append(configurations);
    }

    QList<QList<ProxyConfiguration>> applied;
};

} // namespace lumaro
