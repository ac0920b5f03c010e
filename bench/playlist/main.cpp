// Reading and filtering a list of 200,000 channels, as ratios to a peer's throughput, the list's
// size and the time of a frame.  bench_playlist [ROUNDS]

#include "bench/playlist/ChannelList.h"
#include "bench/playlist/Measurements.h"
#include "bench/report/Report.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr int channelCount = 200'000;
constexpr Seconds frame = std::chrono::milliseconds(16);

Row throughput(const QString &what, const Measured<Parsing> &own, const Measured<Parsing> &peer,
               std::optional<Memory> memory, std::optional<Limit> limit)
{
    Row row{what, 0, {}, limit, memory};
    if (!own || !peer) {
        row.ratio = std::unexpected(own ? peer.error() : own.error());
    } else if (own->entries != channelCount || peer->entries != channelCount) {
        row.ratio = std::unexpected(
            u"found %1 entries, the peer %2"_s.arg(own->entries).arg(peer->entries));
    } else {
        row.ratio = peer->time / own->time;
        row.detail = u"%1, the peer %2"_s.arg(milliseconds(own->time), milliseconds(peer->time));
    }
    return row;
}

Row memoryOfReading(const Measured<ReadingMemory> &own, std::optional<Memory> memory,
                    qsizetype textSize)
{
    Row row{u"peak memory of parsing, to the text's size"_s,
            0,
            {},
            Limit{Limit::Kind::AtMost, 3},
            memory};
    if (own) {
        row.ratio = double(own->added) / double(textSize);
        row.detail = u"%1 added, for %2"_s.arg(megabytes(own->added), megabytes(textSize));
    } else {
        row.ratio = std::unexpected(own.error());
    }
    return row;
}

Row filtering(const QByteArray &list, int rounds)
{
    Row row{u"slowest keystroke of a search, to 16 ms"_s, 0, {}, Limit{Limit::Kind::Below, 1}};
    if (const auto slowest = measureSlowestKeystroke(list, rounds)) {
        row.ratio = slowest->time / frame;
        row.detail = u"%1 for \"%2\""_s.arg(milliseconds(slowest->time), slowest->text);
    } else {
        row.ratio = std::unexpected(slowest.error());
    }
    return row;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc == 3 && QByteArrayView(argv[1]) == printMemoryOption)
        return printReadingMemory(QString::fromLocal8Bit(argv[2]));
    const int rounds = roundsAsked(argc, argv, 5);

    const QByteArray list = channelList(channelCount);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"list.m3u"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(list) != list.size() || !file.flush()) {
        return report(u"playlist"_s,
                      {{u"200,000 channels"_s, std::unexpected(file.errorString())}});
    }
    const auto peer = measurePeer(file.fileName(), rounds);
    // What more rounds leave behind is not what one needs.
    const auto onePeer = measurePeer(file.fileName(), 1);
    const auto reading = measureReadingMemory(file.fileName());
    const auto memory = reading && onePeer
        ? std::optional(Memory{.own = reading->whole, .peer = onePeer->memory})
        : std::nullopt;
    return report(
        u"playlist"_s,
        {
            throughput(u"throughput of parsing 200,000 channels, to iptv-playlist-parser"_s,
                       measureParsing(list, rounds), peer, memory, Limit{Limit::Kind::AtLeast, 10}),
            throughput(u"throughput, making a value of every entry too"_s,
                       measureParsingToValues(list, rounds), peer, {}, {}),
            memoryOfReading(reading, memory, list.size()),
            filtering(list, rounds),
        });
}
