#include "platform/dbus/MprisRootAdaptor.h"

namespace lumaro {

MprisRootAdaptor::MprisRootAdaptor(const MprisPlayer &player, QObject *parent)
    : QDBusAbstractAdaptor(parent)
    , m_player(player)
{
}

QVariantMap MprisRootAdaptor::properties(const MediaControlsState &state)
{
    return {{QStringLiteral("Fullscreen"), state.isFullScreen}};
}

void MprisRootAdaptor::setFullScreen(bool fullScreen)
{
    if (m_player.commands)
        m_player.commands->setFullScreen(fullScreen);
}

void MprisRootAdaptor::Raise()
{
    if (m_player.commands)
        m_player.commands->raise();
}

void MprisRootAdaptor::Quit()
{
    if (m_player.commands)
        m_player.commands->quit();
}

} // namespace lumaro
