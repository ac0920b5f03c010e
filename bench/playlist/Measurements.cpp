#include "bench/playlist/Measurements.h"

#include "platform/qt/QtScheduler.h"
#include "playlist/ChannelListModel.h"
#include "playlist/PlaylistParser.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>
#include <array>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

const QUrl address(u"http://host/list.m3u"_s);

Seconds median(QList<Seconds> times)
{
    std::ranges::sort(times);
    return times[times.size() / 2];
}

template <typename Work>
Seconds timeOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::steady_clock::now() - start;
}

/// `parse` turns bytes into what has a size.
template <typename Parse>
Parsing measure(const QByteArray &list, int rounds, Parse parse)
{
    Parsing parsing{.time = Seconds::max()};
    for (int round = 0; round < rounds; ++round) {
        // Not shared, as bytes that have just arrived.
        QByteArray bytes(list.constData(), list.size());
        const Seconds time = timeOf([&] { parsing.entries = parse(std::move(bytes)); });
        parsing.time = std::min(parsing.time, time);
    }
    return parsing;
}

Measured<QByteArray> outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    constexpr int patience = 300'000;
    if (!process.waitForFinished(patience) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return std::unexpected(u"%1 failed."_s.arg(program));
    return process.readAllStandardOutput();
}

/// A value of /proc/self/status (proc(5)), in bytes; 0 when there is none.
qint64 processStatus(QByteArrayView key)
{
    QFile file(u"/proc/self/status"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key))
            return line.sliced(key.size()).simplified().split(' ').first().toLongLong() * 1024;
    }
    return 0;
}

using Texts = QHash<QString, QList<Seconds>>;

void type(ChannelListModel &channels, const QString &text, Texts &times)
{
    times[text].append(timeOf([&] { channels.setFilterText(text); }));
}

} // namespace

Measured<Parsing> measureParsing(const QByteArray &list, int rounds)
{
    return measure(list, rounds, [](QByteArray bytes) {
        const auto entries = PlaylistParser::read(std::move(bytes), address);
        return entries ? entries->size() : 0;
    });
}

Measured<Parsing> measureParsingToValues(const QByteArray &list, int rounds)
{
    return measure(list, rounds, [](QByteArray bytes) {
        const auto entries = PlaylistParser::read(std::move(bytes), address);
        return entries ? entries->toList().size() : 0;
    });
}

Measured<Parsing> measurePeer(const QString &folder, const QString &script, const QString &file,
                              int rounds)
{
    const auto output = outputOf(u"node"_s, {script, folder, file, QString::number(rounds)});
    if (!output)
        return std::unexpected(output.error());
    const QJsonObject result = QJsonDocument::fromJson(*output).object();
    const Seconds time(result[u"seconds"_s].toDouble());
    if (time <= Seconds::zero())
        return std::unexpected(u"iptv-playlist-parser was not measured."_s);
    return Parsing{result[u"entries"_s].toInteger(), time};
}

Measured<qint64> measurePeakMemory(const QString &file)
{
    const auto output =
        outputOf(QCoreApplication::applicationFilePath(), {u"--print-peak-memory"_s, file});
    if (!output)
        return std::unexpected(output.error());
    const qint64 bytes = output->trimmed().toLongLong();
    if (bytes <= 0)
        return std::unexpected(u"The memory was not measured."_s);
    return bytes;
}

int printPeakMemory(const QString &file)
{
    QFile list(file);
    const qint64 before = processStatus("VmRSS:");
    if (before == 0 || !list.open(QIODevice::ReadOnly))
        return 2;
    const auto entries = PlaylistParser::read(list.readAll(), address);
    std::printf("%lld\n", static_cast<long long>(processStatus("VmHWM:") - before));
    return entries ? 0 : 2;
}

Measured<Keystroke> measureSlowestKeystroke(const QByteArray &list, int rounds)
{
    const auto entries = PlaylistParser::read(list, address);
    if (!entries)
        return std::unexpected(description(entries.error()));
    QtScheduler scheduler;
    ChannelListModel channels(scheduler);
    QEventLoop prepared;
    channels.setEntries(*entries);
    QObject::connect(&channels, &ChannelListModel::countChanged, &prepared, &QEventLoop::quit);
    prepared.exec();
    if (channels.count() != entries->size())
        return std::unexpected(u"The channels are missing."_s);

    // Found everywhere, in many names, in a few, in categories alone, nowhere.
    const std::array texts{u"e"_s,
                           u"hd"_s,
                           u"sports"_s,
                           u"первый экран"_s,
                           u"kanal 1234 fhd"_s,
                           u"1"_s,
                           u"no such channel"_s};
    Texts times;
    for (int round = 0; round < rounds; ++round) {
        for (const QString &text : texts) {
            for (qsizetype length = 1; length <= text.size(); ++length)
                type(channels, text.first(length), times);
            for (qsizetype length = text.size() - 1; length >= 0; --length)
                type(channels, text.first(length), times);
        }
    }
    Keystroke slowest;
    for (const auto &[text, all] : times.asKeyValueRange()) {
        if (const Seconds time = median(all); time > slowest.time)
            slowest = {text, time};
    }
    return slowest;
}

} // namespace lumaro
