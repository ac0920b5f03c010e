#include "tests/e2e/servers/VirtualDisplay.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <array>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

/// The line that arrives at `descriptor`; what came so far when it ends or the time is up.
QByteArray readLine(int descriptor, QDeadlineTimer deadline)
{
    QByteArray line;
    while (!line.endsWith('\n')) {
        pollfd waiting{.fd = descriptor, .events = POLLIN, .revents = 0};
        const int ready = poll(&waiting, 1, int(deadline.remainingTime()));
        if (ready < 0 && errno == EINTR)
            continue;
        char byte = 0;
        if (ready <= 0 || read(descriptor, &byte, 1) != 1)
            break;
        line.append(byte);
    }
    return line;
}

} // namespace

std::expected<std::unique_ptr<VirtualDisplay>, QString> VirtualDisplay::start()
{
    std::unique_ptr<VirtualDisplay> display(new VirtualDisplay);
    const QString own = qEnvironmentVariable("DISPLAY");
    if (!own.isEmpty() && qEnvironmentVariable("LUMARO_E2E_USE_DISPLAY") == u"1")
        display->m_name = own;
    else if (const auto started = display->startServer(); !started)
        return std::unexpected(started.error());
    qputenv("DISPLAY", display->m_name.toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
    return display;
}

std::expected<void, QString> VirtualDisplay::startServer()
{
    std::array<int, 2> pipe{-1, -1};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        return std::unexpected(u"No pipe for the display server."_s);
    // The server looks for a free number itself and tells it when it accepts clients.
    const auto started = m_server.start(
        u"Xvfb"_s,
        {u"-displayfd"_s, QString::number(pipe[1]), u"-screen"_s, u"0"_s,
         QString::number(width) + u'x' + QString::number(height) + u"x24"_s, u"+extension"_s,
         u"GLX"_s, u"-nolisten"_s, u"tcp"_s, u"-noreset"_s, u"-br"_s},
        {.inheritedDescriptor = pipe[1]});
    close(pipe[1]);
    const QByteArray number = started ? readLine(pipe[0], QDeadlineTimer(20s)).trimmed() : "";
    close(pipe[0]);
    if (!started)
        return started;
    if (number.isEmpty())
        return std::unexpected(u"The display server did not start."_s);
    m_name = u':' + QString::fromLatin1(number);
    return {};
}

int runInDisplay(const std::function<int()> &program)
{
    const auto display = VirtualDisplay::start();
    if (display)
        return program();
    std::fprintf(stderr, "%s\n", qPrintable(display.error()));
    return 1;
}

} // namespace lumaro
