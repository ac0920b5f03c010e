#include "tests/e2e/servers/SessionBus.h"

#include <QFile>

#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace lumaro {

namespace {

/// Nothing is started on demand: what a machine happens to have must not answer.
QByteArray configuration(const QString &address)
{
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <auth>EXTERNAL</auth>
  <listen>)"
        + address.toUtf8() + R"(</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
}

} // namespace

std::expected<std::unique_ptr<SessionBus>, QString> SessionBus::start()
{
    std::unique_ptr<SessionBus> bus(new SessionBus);
    const QString socket = bus->m_folder.filePath(u"bus"_s);
    bus->m_address = u"unix:path="_s + socket;
    QFile file(bus->m_folder.filePath(u"bus.conf"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration(bus->m_address)) < 0)
        return std::unexpected(u"The bus's configuration cannot be written."_s);
    file.close();
    const auto started = bus->m_daemon.start(
        u"dbus-daemon"_s, {u"--nofork"_s, u"--config-file="_s + file.fileName()}, {});
    if (!started)
        return std::unexpected(started.error());
    for (int i = 0; i < 1000 && !QFile::exists(socket); ++i)
        std::this_thread::sleep_for(10ms);
    if (!QFile::exists(socket))
        return std::unexpected(u"The bus does not start."_s);
    for (const char *variable : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        qputenv(variable, bus->m_address.toUtf8());
    return bus;
}

} // namespace lumaro
