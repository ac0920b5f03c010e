#include "finder/SnifferProxySettingsModel.h"

#include <array>

namespace lumaro {

namespace {

using ProxyType = SnifferProxyManager::ProxyType;

/// A proxy that runs on many users' own machines, at the port that it has unless told otherwise.
struct Preset
{
    QStringView name;
    ProxyType type = ProxyType::Socks5;
    int port = 0;
};

constexpr std::array localPresets{
    Preset{u"SOCKS5 · 1080", ProxyType::Socks5, 1080},
    Preset{u"Tor · 9050", ProxyType::Socks5, 9050},
    Preset{u"Tor Browser · 9150", ProxyType::Socks5, 9150},
    Preset{u"HTTP · 8080", ProxyType::Http, 8080},
    Preset{u"Privoxy · 8118", ProxyType::Http, 8118},
};

} // namespace

SnifferProxySettingsModel::SnifferProxySettingsModel(SnifferProxyManager &manager, QObject *parent)
    : QObject(parent)
    , m_manager(manager)
{
}

QStringList SnifferProxySettingsModel::proxyTypes()
{
    QStringList labels;
    for (const ProxyType type : SnifferProxyManager::proxyTypes())
        labels.append(SnifferProxyManager::rawValue(type));
    return labels;
}

QStringList SnifferProxySettingsModel::presets()
{
    QStringList names;
    for (const Preset &preset : localPresets)
        names.append(preset.name.toString());
    return names;
}

void SnifferProxySettingsModel::setEnabled(bool enabled)
{
    m_manager.setEnabled(enabled);
    confirm();
}

void SnifferProxySettingsModel::chooseType(int index)
{
    const auto types = SnifferProxyManager::proxyTypes();
    if (index < 0 || index >= types.size())
        return;
    m_manager.setProxyType(types[index]);
    confirm();
}

void SnifferProxySettingsModel::confirm()
{
    if (m_manager.hasUnappliedChanges())
        m_manager.applyProxyConfiguration(true);
}

void SnifferProxySettingsModel::applyPreset(int index)
{
    if (index < 0 || index >= std::ssize(localPresets))
        return;
    const Preset &preset = localPresets[size_t(index)];
    m_manager.applyPreset(preset.type, QStringLiteral("127.0.0.1"), preset.port);
}

} // namespace lumaro
