#include "platform/posix/PosixTerminal.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace lumaro {

namespace {

constexpr std::array endingSignals = {SIGINT, SIGTERM, SIGHUP};

/// A signal handler can do little but write; the event loop reads what it wrote.
std::array<int, 2> signalPipe = {-1, -1};

extern "C" void tellEventLoop(int number)
{
    const auto byte = static_cast<unsigned char>(number);
    // The next one of its kind ends the process.
    std::signal(number, SIG_DFL);
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
}

/// Whoever started this process may have it ignore a signal, as nohup does.
bool isIgnored(int number)
{
    struct sigaction action{};
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void writeAll(int descriptor, const QByteArray &text)
{
    QByteArrayView bytes = text;
    while (!bytes.isEmpty()) {
        const ssize_t count = write(descriptor, bytes.data(), size_t(bytes.size()));
        if (count <= 0)
            return;
        bytes = bytes.sliced(count);
    }
}

int columns()
{
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

PosixTerminal::PosixTerminal(QObject *parent)
    : Terminal(parent)
    , m_isInteractive(isatty(STDERR_FILENO) == 1 && qgetenv("TERM") != "dumb")
{
    // A reader that goes away must not end what goes on here.
    std::signal(SIGPIPE, SIG_IGN);
    if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_signals = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(m_signals.get(), &QSocketNotifier::activated, this, &PosixTerminal::receiveSignal);
    for (const int number : endingSignals) {
        if (!isIgnored(number))
            std::signal(number, tellEventLoop);
    }
}

PosixTerminal::~PosixTerminal()
{
    for (const int number : endingSignals) {
        if (!isIgnored(number))
            std::signal(number, SIG_DFL);
    }
    m_signals.reset();
    for (int &end : signalPipe)
        close(std::exchange(end, -1));
}

void PosixTerminal::showProgress(const QString &line)
{
    if (!m_isInteractive || (line.isEmpty() && !m_showsProgress))
        return;
    m_showsProgress = !line.isEmpty();
    // A line that wraps could not be taken back.
    writeAll(STDERR_FILENO, '\r' + line.left(columns() - 1).toLocal8Bit() + "\033[K");
}

void PosixTerminal::say(const QString &line)
{
    showProgress(QString());
    writeAll(STDERR_FILENO, line.toLocal8Bit() + '\n');
}

void PosixTerminal::print(const QString &line)
{
    showProgress(QString());
    writeAll(STDOUT_FILENO, line.toLocal8Bit() + '\n');
}

void PosixTerminal::receiveSignal()
{
    unsigned char number = 0;
    if (read(signalPipe[0], &number, 1) == 1)
        Q_EMIT interrupted(number);
}

} // namespace lumaro
