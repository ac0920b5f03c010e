#include "bench/playlist/Measurements.h"

#include "bench/report/NpmPeer.h"
#include "bench/report/ProcessMemory.h"
#include "platform/qt/QtScheduler.h"
#include "playlist/ChannelListModel.h"
#include "playlist/PlaylistParser.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QProcess>

#include <algorithm>
#include <array>
#include <cstdio>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

const QUrl address(u"http://host/list.m3u"_s);

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

Measured<Parsing> measurePeer(const QString &file, int rounds)
{
    const auto said = askNpmPeer(u"playlist"_s, u"iptv-playlist-parser"_s, u"0.15"_s,
                                 {file, QString::number(rounds)});
    if (!said)
        return std::unexpected(said.error());
    return Parsing{.entries = (*said)[u"entries"_s].toInteger(),
                   .time = Seconds((*said)[u"seconds"_s].toDouble()),
                   .memory = (*said)[u"peakMemory"_s].toInteger()};
}

Measured<ReadingMemory> measureReadingMemory(const QString &file)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QString::fromLatin1(printMemoryOption), file});
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return std::unexpected(u"The memory was not measured."_s);
    const QByteArrayList numbers = process.readAllStandardOutput().trimmed().split(' ');
    return ReadingMemory{.added = numbers.value(0).toLongLong(),
                         .whole = numbers.value(1).toLongLong()};
}

int printReadingMemory(const QString &file)
{
    QFile list(file);
    const qint64 before = residentMemory(getpid());
    if (before == 0 || !list.open(QIODevice::ReadOnly))
        return 2;
    const auto entries = PlaylistParser::read(list.readAll(), address);
    const qint64 peak = peakMemory(getpid());
    std::printf("%lld %lld\n", static_cast<long long>(peak - before), static_cast<long long>(peak));
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
