#include "tests/e2e/soak/MoodyServer.h"

#include "tests/e2e/servers/ValueOrFail.h"

#include <QDir>

#include <array>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace lumaro {

namespace {

/// Of a list, which is then about a megabyte.
constexpr qint64 channels = 20'000;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray noise(Dice &dice)
{
    QByteArray bytes(dice.below(100'000), '\0');
    for (char &byte : bytes)
        byte = char(dice.below(256));
    return bytes;
}

qint64 somewhereIn(const FaultResponse &response, Dice &dice)
{
    return qint64(double(response.body.size()) * dice.fraction());
}

FaultResponse withStatus(FaultResponse response, int status)
{
    response.status = status;
    response.body = {.head = "<h1>No</h1>", .part = {}, .times = 0, .tail = {}};
    return response;
}

using Mood = void (*)(FaultResponse &, Dice &);

constexpr std::array<Mood, 10> badMoods{
    [](FaultResponse &response, Dice &) { response = withStatus(response, 404); },
    [](FaultResponse &response, Dice &) { response = withStatus(response, 500); },
    [](FaultResponse &response, Dice &) {
        response = withStatus(response, 302);
        response.headers.emplaceBack("Location", "/index.m3u8");
    },
    [](FaultResponse &response, Dice &dice) { response.resetAfter = somewhereIn(response, dice); },
    [](FaultResponse &response, Dice &dice) { response.closeAfter = somewhereIn(response, dice); },
    [](FaultResponse &response, Dice &dice) { response.stallAfter = somewhereIn(response, dice); },
    [](FaultResponse &response, Dice &dice) {
        response.delay = std::chrono::milliseconds(dice.below(4000));
    },
    [](FaultResponse &response, Dice &) {
        response.dripSize = 2000;
        response.dripInterval = 50ms;
    },
    // Cut off, but a whole answer.
    [](FaultResponse &response, Dice &dice) {
        response.closeAfter = somewhereIn(response, dice);
        response.framing = FaultResponse::Framing::UntilClose;
    },
    [](FaultResponse &response, Dice &dice) {
        response.body = {.head = noise(dice), .part = {}, .times = 0, .tail = {}};
    },
};

} // namespace

std::unique_ptr<MoodyServer> MoodyServer::start(const MediaFixtures &media)
{
    auto server = std::make_unique<MoodyServer>();
    server->m_server = valueOrFail(FaultServer::start());
    const QFileInfo master(valueOrFail(media.path(Fixture::Hls)));
    if (!server->m_server || !server->addStream(master.dir().filePath(u"low"_s)))
        return nullptr;
    QMap<QByteArray, FaultResponse> &good = server->m_good;
    good["/film.mp4"] =
        FaultResponse::of("video/mp4", contentOf(valueOrFail(media.path(Fixture::SolidColor))));
    FaultResponse list = FaultResponse::of("audio/x-mpegurl", "#EXTM3U\n");
    list.body.part = "#EXTINF:-1 group-title=\"Moody\",Channel\n"
        + server->url("/index.m3u8").toEncoded() + '\n';
    list.body.times = channels;
    good["/list.m3u"] = list;
    good["/page.html"] = FaultResponse::of(
        "text/html",
        "<!doctype html><title>Moody</title><video src=/film.mp4 muted autoplay loop>"
        "</video><script>fetch('/index.m3u8')</script>");
    server->calmDown();
    return server;
}

bool MoodyServer::addStream(const QString &folder)
{
    const QDir dir(folder);
    const QStringList names = dir.entryList(QDir::Files);
    for (const QString &name : names) {
        const QByteArray type =
            name.endsWith(u".m3u8") ? "application/vnd.apple.mpegurl" : "video/mp2t";
        m_good["/" + name.toLatin1()] = FaultResponse::of(type, contentOf(dir.filePath(name)));
    }
    return m_good.contains("/index.m3u8");
}

void MoodyServer::changeMoods(Dice &dice)
{
    for (auto path = m_good.cbegin(); path != m_good.cend(); ++path) {
        FaultResponse response = path.value();
        if (dice.hits(50))
            badMoods.at(size_t(dice.below(int(badMoods.size()))))(response, dice);
        m_server->route(path.key(), response);
    }
    wake();
}

void MoodyServer::calmDown()
{
    for (auto path = m_good.cbegin(); path != m_good.cend(); ++path)
        m_server->route(path.key(), path.value());
    wake();
}

void MoodyServer::wake()
{
    for (auto path = m_good.cbegin(); path != m_good.cend(); ++path)
        m_server->release(path.key());
    m_server->forgetRequests();
}

} // namespace lumaro
