#include "tests/e2e/servers/ChildProcess.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStandardPaths>

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace lumaro {

namespace {

QString findProgram(const QString &program)
{
    QString found = QStandardPaths::findExecutable(program);
    if (!found.isEmpty())
        return found;
    // Servers live where an ordinary user's PATH does not reach.
    return QStandardPaths::findExecutable(
        program, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")});
}

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::generic_category().message(error).c_str());
}

/// What the new process needs, prepared before the fork: after it, only async-signal-safe calls
/// are allowed.
struct Launch
{
    QByteArray program;
    std::vector<QByteArray> arguments;
    QByteArray workingFolder;
    int input = -1;
    int output = -1;
    int inherited = -1;
    int report = -1;
    pid_t parent = -1;
};

[[noreturn]] void runInChild(const Launch &launch, char **argv)
{
    const auto fail = [&launch](int error) {
        const ssize_t written = write(launch.report, &error, sizeof error);
        _exit(written == ssize_t(sizeof error) ? 127 : 126);
    };
    // The parent may have died before the request reached the kernel.
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != launch.parent)
        fail(ECHILD);
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    if (!launch.workingFolder.isEmpty() && chdir(launch.workingFolder.constData()) != 0)
        fail(errno);
    if (dup2(launch.input, STDIN_FILENO) < 0 || dup2(launch.output, STDOUT_FILENO) < 0
        || dup2(launch.output, STDERR_FILENO) < 0)
        fail(errno);
    if (launch.inherited >= 0 && fcntl(launch.inherited, F_SETFD, 0) != 0)
        fail(errno);
    execv(launch.program.constData(), argv);
    fail(errno);
    _exit(127);
}

std::chrono::microseconds microseconds(const timeval &time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

} // namespace

ChildProcess::~ChildProcess()
{
    stop();
}

std::expected<void, QString>
ChildProcess::start(const QString &program, const QStringList &arguments, const Options &options)
{
    stop();
    const QString path = findProgram(program);
    if (path.isEmpty())
        return std::unexpected(QString(program + u" is not installed."));

    Launch launch{.program = QFile::encodeName(path),
                  .arguments = {},
                  .workingFolder = QFile::encodeName(options.workingFolder),
                  .inherited = options.inheritedDescriptor,
                  .parent = getpid()};
    launch.arguments.push_back(launch.program);
    for (const QString &argument : arguments)
        launch.arguments.push_back(QFile::encodeName(argument));
    std::vector<char *> argv;
    argv.reserve(launch.arguments.size() + 1);
    for (QByteArray &argument : launch.arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    std::array<int, 2> report{-1, -1};
    const QByteArray log = options.logFile.isEmpty() ? QByteArrayLiteral("/dev/null")
                                                     : QFile::encodeName(options.logFile);
    launch.input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    launch.output = open(log.constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    int error = 0;
    if (launch.input < 0 || launch.output < 0 || pipe2(report.data(), O_CLOEXEC) != 0) {
        error = errno;
    } else {
        launch.report = report[1];
        m_pid = fork();
        if (m_pid == 0)
            runInChild(launch, argv.data());
        error = m_pid < 0 ? errno : 0;
    }
    for (const int descriptor : {launch.input, launch.output, report[1]}) {
        if (descriptor >= 0)
            close(descriptor);
    }

    m_running = m_pid > 0 && error == 0;
    m_exitCode.reset();
    // Nothing comes when the new program has taken over, for that closes the pipe.
    int childError = 0;
    if (m_running
        && read(report[0], &childError, sizeof childError) == ssize_t(sizeof childError)) {
        reap(0);
        error = childError;
    }
    if (report[0] >= 0)
        close(report[0]);
    if (error != 0)
        return std::unexpected(QString(path + u" cannot be started: " + systemError(error) + u'.'));
    return {};
}

bool ChildProcess::reap(int options)
{
    if (!m_running)
        return true;
    int status = 0;
    rusage usage{};
    pid_t ended = -1;
    do {
        ended = wait4(m_pid, &status, options, &usage);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0)
        return false;
    m_running = false;
    if (ended == m_pid) {
        if (WIFEXITED(status))
            m_exitCode = WEXITSTATUS(status);
        m_processorTime = microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
    }
    return true;
}

bool ChildProcess::isRunning()
{
    return !reap(WNOHANG);
}

bool ChildProcess::waitForFinished(std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    while (isRunning()) {
        if (deadline.hasExpired())
            return false;
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

void ChildProcess::sendSignal(int number)
{
    if (isRunning())
        kill(m_pid, number);
}

void ChildProcess::stop(std::chrono::milliseconds patience)
{
    sendSignal(SIGTERM);
    sendSignal(SIGCONT);
    if (waitForFinished(patience))
        return;
    sendSignal(SIGKILL);
    reap(0);
}

} // namespace lumaro
