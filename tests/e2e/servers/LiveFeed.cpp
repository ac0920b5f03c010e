#include "tests/e2e/servers/LiveFeed.h"

#include "tests/e2e/servers/Fetch.h"

#include <QDir>
#include <qtestsupport_core.h>

#include <csignal>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

/// Players begin three segments behind the end of the list.
constexpr qsizetype segmentsToStart = 3;

const QString ffmpegArguments =
    u"-nostdin -hide_banner -loglevel error -re -f lavfi -i "
    u"testsrc2=size=640x360:rate=30,hue=h=180*t -re "
    "-f lavfi -i sine=frequency=440:sample_rate=48000 -c:v libx264 -preset ultrafast -tune "
    "zerolatency -pix_fmt yuv420p -g 30 -keyint_min 30 -sc_threshold 0 -b:v 500k -c:a aac -b:a "
    "64k -f hls -hls_time 1 -hls_list_size 6 -hls_flags "
    "delete_segments+independent_segments+temp_file -hls_segment_filename segment%06d.ts "
    "index.m3u8"_s;

QList<QByteArray> segmentsOf(const QByteArray &playlist)
{
    QList<QByteArray> segments;
    for (const QByteArray &line : playlist.split('\n')) {
        if (!line.isEmpty() && !line.startsWith('#'))
            segments.append(line.trimmed());
    }
    return segments;
}

} // namespace

LiveFeed::LiveFeed(const NginxServer &server, const QString &name)
    : m_server(server)
    , m_name(name)
{
}

LiveFeed::~LiveFeed()
{
    remove();
}

std::expected<std::unique_ptr<LiveFeed>, QString> LiveFeed::start(const NginxServer &server,
                                                                  const QString &name)
{
    const QString folder = server.documentRoot() + u'/' + name;
    if (!QDir().mkpath(folder))
        return std::unexpected(QString(folder + u" cannot be made."_s));
    std::unique_ptr<LiveFeed> feed(new LiveFeed(server, name));
    if (const auto started = feed->m_ffmpeg.start(u"ffmpeg"_s, ffmpegArguments.split(u' '),
                                                  {.workingFolder = folder});
        !started)
        return std::unexpected(started.error());
    return feed;
}

QUrl LiveFeed::url() const
{
    return m_server.url(u'/' + m_name + u"/index.m3u8"_s);
}

bool LiveFeed::waitUntilServing(std::chrono::milliseconds timeout) const
{
    return QTest::qWaitFor(
        [this] {
            const Fetched playlist = fetch(url(), 2s);
            const QList<QByteArray> segments = segmentsOf(playlist.body);
            if (playlist.status != 200 || segments.size() < segmentsToStart)
                return false;
            const QUrl first = url().resolved(QUrl(QString::fromUtf8(segments.first())));
            return fetch(first, 2s).status == 200;
        },
        int(timeout.count()));
}

void LiveFeed::stall()
{
    m_ffmpeg.sendSignal(SIGSTOP);
}

void LiveFeed::resume()
{
    m_ffmpeg.sendSignal(SIGCONT);
}

void LiveFeed::finish()
{
    m_ffmpeg.stop();
}

void LiveFeed::remove()
{
    m_ffmpeg.stop();
    QDir(m_server.documentRoot() + u'/' + m_name).removeRecursively();
}

} // namespace lumaro
