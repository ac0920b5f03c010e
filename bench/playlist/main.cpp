// Reading and filtering a list of 200,000 channels, as ratios to a peer's throughput, the list's
// size and the time of a frame.  bench_playlist PEER_FOLDER PEER_SCRIPT [--rounds N]

#include "bench/playlist/ChannelList.h"
#include "bench/playlist/Measurements.h"
#include "bench/report/Report.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr int channelCount = 200'000;
constexpr Seconds frame = std::chrono::milliseconds(16);

Row throughput(const QString &what, const Measured<Parsing> &own, const Measured<Parsing> &peer,
               std::optional<Limit> limit)
{
    Row row{what, 0, {}, limit};
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

Row memory(const QString &file, qsizetype textSize)
{
    Row row{u"peak memory of it, to the text's size"_s, 0, {}, Limit{Limit::Kind::AtMost, 3}};
    if (const auto peak = measurePeakMemory(file)) {
        row.ratio = double(*peak) / double(textSize);
        row.detail = u"%1 MB to %2 MB"_s.arg(*peak / 1'000'000).arg(textSize / 1'000'000);
    } else {
        row.ratio = std::unexpected(peak.error());
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
    QCommandLineParser parser;
    const QCommandLineOption rounds(u"rounds"_s, u"How often each is done."_s, u"N"_s, u"5"_s);
    const QCommandLineOption printMemory(u"print-peak-memory"_s, u"Only reads FILE."_s, u"FILE"_s);
    parser.addOptions({rounds, printMemory});
    parser.addHelpOption();
    parser.addPositionalArgument(u"peer"_s, u"The folder of iptv-playlist-parser."_s);
    parser.addPositionalArgument(u"script"_s, u"The script that times it."_s);
    parser.process(application);
    if (parser.isSet(printMemory))
        return printPeakMemory(parser.value(printMemory));
    const int count = parser.value(rounds).toInt();
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 2 || count < 1)
        parser.showHelp(2);

    const QByteArray list = channelList(channelCount);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"list.m3u"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(list) != list.size() || !file.flush()) {
        std::fprintf(stderr, "The list cannot be written to %s.\n", qPrintable(file.fileName()));
        return 2;
    }
    const auto peer = measurePeer(arguments[0], arguments[1], file.fileName(), count);
    const QList<Row> rows{
        throughput(u"throughput of parsing, to iptv-playlist-parser"_s, measureParsing(list, count),
                   peer, Limit{Limit::Kind::AtLeast, 10}),
        throughput(u"the same, making a value of every entry too"_s,
                   measureParsingToValues(list, count), peer, std::nullopt),
        memory(file.fileName(), list.size()),
        filtering(list, count),
    };
    return report(u"playlist of 200,000 channels"_s, rows);
}
