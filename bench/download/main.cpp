// Saving a stream from nginx on this machine, Lumaro, curl, ffmpeg and yt-dlp by turns.
//   bench_download [ROUNDS]

#include "bench/report/ProcessMemory.h"
#include "bench/report/Report.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/NginxServer.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <csignal>
#include <thread>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr double wallLimit = 1.5;
constexpr double processorLimit = 0.25;
/// What a stream may add to what the program needs for any, in bytes.
constexpr qint64 memoryLimit = 8 * 1024 * 1024;
constexpr Seconds stopLimit = 200ms;
constexpr auto patience = 5min;
/// The peak is asked for until the end, for an ended program has no memory any more.
constexpr auto sampleInterval = 4ms;

struct Command
{
    QString name;
    QString program;
    QStringList arguments;
    /// Where the stream ends up; for curl that is its output.
    QString file;
    bool writesToOutput = false;
};

struct Run
{
    Seconds wall{};
    Seconds processor{};
    qint64 peakMemory = 0;
    qint64 size = 0;
};

Measured<Run> measure(const Command &command)
{
    QFile::remove(command.file);
    const auto begin = std::chrono::steady_clock::now();
    ChildProcess process;
    const auto started =
        process.start(command.program, command.arguments,
                      {.logFile = command.writesToOutput ? command.file : QString()});
    if (!started)
        return std::unexpected(started.error());
    qint64 memory = 0;
    while (!process.waitForFinished(sampleInterval)
           && std::chrono::steady_clock::now() - begin < patience)
        memory = std::max(memory, peakMemory(process.processId()));
    const Seconds wall = std::chrono::steady_clock::now() - begin;
    const qint64 size = QFileInfo(command.file).size();
    QFile::remove(command.file);
    if (process.exitCode() != 0 || size == 0 || memory == 0)
        return std::unexpected(QString(command.name + u" failed."_s));
    return Run{wall, process.processorTime(), memory, size};
}

/// The longest time from the signal to the end, for stops at different moments.
Measured<Seconds> slowestStop(const Command &command)
{
    Seconds slowest{};
    for (const auto moment : {20ms, 60ms, 100ms, 140ms, 180ms, 220ms, 260ms}) {
        ChildProcess process;
        if (const auto started = process.start(command.program, command.arguments, {}); !started)
            return std::unexpected(started.error());
        std::this_thread::sleep_for(moment);
        const bool isEarly = process.isRunning();
        const auto begin = std::chrono::steady_clock::now();
        process.sendSignal(SIGINT);
        if (!process.waitForFinished(patience))
            return std::unexpected(u"A stopped download went on."_s);
        if (isEarly)
            slowest = std::max<Seconds>(slowest, std::chrono::steady_clock::now() - begin);
        QFile::remove(command.file);
    }
    return slowest;
}

template <typename Value>
double medianOf(const QList<Run> &runs, Value value)
{
    QList<double> values;
    for (const Run &run : runs)
        values.append(value(run));
    return median(values);
}

double wallOf(const QList<Run> &runs)
{
    return medianOf(runs, [](const Run &run) { return run.wall.count(); });
}

/// Seconds for each gigabyte.
double processorOf(const QList<Run> &runs)
{
    return medianOf(
        runs, [](const Run &run) { return run.processor.count() / (double(run.size) / 1e9); });
}

qint64 memoryOf(const QList<Run> &runs)
{
    return qint64(medianOf(runs, [](const Run &run) { return double(run.peakMemory); }));
}

/// The stream on a server, and the ways to fetch it.
class Course
{
public:
    static Measured<std::unique_ptr<Course>> open()
    {
        const auto playlist =
            MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::LargeHls);
        if (!playlist)
            return std::unexpected(playlist.error());
        auto server = NginxServer::start();
        if (!server)
            return std::unexpected(server.error());
        std::unique_ptr<Course> course(new Course(std::move(*server)));
        if (!course->publish(*playlist))
            return std::unexpected(u"The stream cannot be published."_s);
        return course;
    }

    QList<Command> commands() const
    {
        const QString url = address(u"index.m3u8"_s);
        return {
            lumaro(u"lumaro"_s, u"index.m3u8"_s),
            lumaro(u"lumaro, two segments"_s, u"short.m3u8"_s),
            {.name = u"curl"_s,
             .program = u"curl"_s,
             .arguments = {u"-sS"_s, u"--config"_s, file(u"curl.config"_s)},
             .file = file(u"curl.ts"_s),
             .writesToOutput = true},
            {.name = u"ffmpeg -c copy"_s,
             .program = u"ffmpeg"_s,
             .arguments = {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-i"_s, url, u"-c"_s, u"copy"_s,
                           file(u"ffmpeg.ts"_s)},
             .file = file(u"ffmpeg.ts"_s)},
            {.name = u"yt-dlp"_s,
             .program = u"yt-dlp"_s,
             .arguments = {u"--ignore-config"_s, u"--no-cache-dir"_s, u"-q"_s, u"--downloader"_s,
                           u"native"_s, u"--fixup"_s, u"never"_s, u"-o"_s, file(u"yt.mp4"_s), url},
             .file = file(u"yt.mp4"_s)},
        };
    }

private:
    explicit Course(std::unique_ptr<NginxServer> server)
        : m_server(std::move(server))
    {
    }

    QString file(const QString &name) const { return m_folder.filePath(name); }
    QString address(const QString &name) const
    {
        return m_server->url(u"/large/"_s + name).toString();
    }

    Command lumaro(const QString &name, const QString &playlist) const
    {
        return {.name = name,
                .program = lumaroProgram(),
                .arguments = {u"--download"_s, address(playlist), u"--to"_s, m_folder.path(),
                              u"--name"_s, u"lumaro"_s},
                .file = file(u"lumaro.ts"_s)};
    }

    bool publish(const QString &playlist)
    {
        QFile input(playlist);
        QFile config(file(u"curl.config"_s));
        const QString folder = QFileInfo(playlist).absolutePath();
        if (!m_server->publish(folder, u"large"_s) || !input.open(QIODevice::ReadOnly)
            || !config.open(QIODevice::WriteOnly))
            return false;
        QByteArrayList segments;
        for (const QByteArray &line : input.readAll().split('\n')) {
            if (!line.isEmpty() && !line.startsWith('#'))
                segments.append(line);
        }
        for (const QByteArray &segment : segments)
            config.write("url = \"" + address(QString::fromUtf8(segment)).toUtf8() + "\"\n");
        return segments.size() > 2
            && m_server->writeFile(u"large/short.m3u8"_s,
                                   "#EXTM3U\n" + segments.at(0) + '\n' + segments.at(1)
                                       + "\n#EXT-X-ENDLIST\n");
    }

    std::unique_ptr<NginxServer> m_server;
    QTemporaryDir m_folder;
};

Measured<QList<QList<Run>>> measureRounds(const QList<Command> &commands, int rounds)
{
    QList<QList<Run>> runs(commands.size());
    for (int round = 0; round < rounds; ++round) {
        for (qsizetype i = 0; i < commands.size(); ++i) {
            const auto run = measure(commands.at(i));
            if (!run)
                return std::unexpected(run.error());
            runs[i].append(*run);
        }
    }
    for (qsizetype i = 0; i < commands.size(); ++i)
        say(u"%1: %2 s, %3 s of processor time a GB"_s.arg(commands.at(i).name)
                .arg(wallOf(runs.at(i)), 0, 'f', 2)
                .arg(processorOf(runs.at(i)), 0, 'f', 3));
    return runs;
}

Measured<QList<Row>> measureAll(int rounds)
{
    const auto course = Course::open();
    if (!course)
        return std::unexpected(course.error());
    const QList<Command> commands = (*course)->commands();
    const auto runs = measureRounds(commands, rounds);
    if (!runs)
        return std::unexpected(runs.error());
    const auto stop = slowestStop(commands.at(0));
    if (!stop)
        return std::unexpected(stop.error());

    const QList<Run> &lumaro = runs->at(0);
    const auto compared = [&](const QString &what, auto value, const QString &unit, int peer,
                              double limit) {
        const QList<Run> &theirs = runs->at(peer);
        return Row{what, value(lumaro) / value(theirs),
                   u"%1 %3, the peer %2 %3"_s.arg(QString::number(value(lumaro), 'f', 2),
                                                  QString::number(value(theirs), 'f', 2), unit),
                   Limit{Limit::Kind::AtMost, limit},
                   Memory{.own = memoryOf(lumaro), .peer = memoryOf(theirs)}};
    };
    const Memory own{.own = memoryOf(lumaro)};
    const qint64 growth = own.own - memoryOf(runs->at(1));
    const Limit once{Limit::Kind::AtMost, 1};
    return QList<Row>{
        compared(u"wall time of 200 segments of 2 MB, to one curl"_s, wallOf, u"s"_s, 2, wallLimit),
        compared(u"processor time a GB, to ffmpeg -c copy"_s, processorOf, u"s"_s, 3,
                 processorLimit),
        compared(u"processor time a GB, to yt-dlp"_s, processorOf, u"s"_s, 4, processorLimit),
        {u"memory beyond that for two segments, to 8 MB"_s, double(growth) / double(memoryLimit),
         megabytes(growth), once, own},
        {u"slowest stop, to 200 ms"_s, *stop / stopLimit, milliseconds(*stop), once, own}};
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const auto rows = measureAll(roundsAsked(argc, argv, 3));
    return report(u"download"_s,
                  rows ? *rows
                       : QList<Row>{{u"200 segments of 2 MB"_s, std::unexpected(rows.error())}});
}
