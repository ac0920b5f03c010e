// Deciding requests by the ad blocker's rules with 100,000 domains of the user's, and recording
// visits.  bench_finder

#include "bench/report/NpmPeer.h"
#include "bench/report/ProcessMemory.h"
#include "bench/report/Report.h"
#include "finder/SnifferAdBlocker.h"
#include "finder/SnifferSavedWebsiteStore.h"
#include "platform/contentrules/CompiledRuleList.h"
#include "platform/contentrules/CompilingRuleListStore.h"
#include "platform/qt/FileUserDefaults.h"
#include "platform/qt/QtScheduler.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <atomic>
#include <random>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr int domainCount = 100'000;
constexpr int requestCount = 20'000;
constexpr Seconds longestRequest = std::chrono::microseconds(1);
constexpr Seconds frame = std::chrono::milliseconds(16);
constexpr Seconds longestVisit = std::chrono::milliseconds(2);

const QString page = u"https://www.video-page.tv/watch/4711"_s;

Seconds elapsed(const QElapsedTimer &clock)
{
    return std::chrono::nanoseconds(clock.nsecsElapsed());
}

QString word(std::mt19937 &random, unsigned shortest, unsigned longest)
{
    QString text;
    for (unsigned length = shortest + random() % (longest - shortest + 1); length > 0; --length)
        text += QChar(char16_t(u'a' + random() % 26));
    return text;
}

/// Domains as block lists have them: a few labels under a few suffixes.
QStringList makeDomains(std::mt19937 &random)
{
    const QStringList suffixes = {u"com"_s, u"net"_s, u"ru"_s, u"xyz"_s, u"co.uk"_s, u"top"_s};
    QStringList domains;
    for (int i = 0; i < domainCount; ++i)
        domains.append((i % 3 == 0 ? word(random, 2, 6) + u'.' : QString()) + word(random, 6, 14)
                       + u'.' + suffixes[qsizetype(random() % size_t(suffixes.size()))]);
    return domains;
}

/// Addresses as pages load them, one in ten from a blocked domain.
QStringList makeRequests(const QStringList &domains, std::mt19937 &random)
{
    const auto number = [&random] { return QString::number(random()); };
    const auto hex = [&random] { return QString::number(random(), 16); };
    QStringList requests;
    for (int i = 0; i < requestCount; ++i) {
        const QString site = i % 10 == 0
            ? domains[qsizetype(random() % domainCount)]
            : QString(word(random, 5, 12) + u'-' + word(random, 3, 8) + u".org");
        switch (random() % 5) {
        case 0:
            requests.append(u"https://cdn"_s + number().left(2) + u'.' + site + u"/assets/js/"
                            + word(random, 4, 9) + u'.' + hex() + u".min.js");
            break;
        case 1:
            requests.append(u"https://img."_s + site + u"/w_640,h_360/" + hex() + u'/' + hex()
                            + u".webp?auto=format&q=75");
            break;
        case 2:
            requests.append(u"https://api."_s + site + u"/v2/events?id=" + hex() + hex() + u"&ts="
                            + number() + u"&page=https%3A%2F%2Fwww.video-page.tv%2Fwatch&lang=en");
            break;
        case 3:
            requests.append(u"https://"_s + site + u"/hls/" + hex() + u"/720p/segment"
                            + number().left(5) + u".ts?token=" + hex() + hex() + hex());
            break;
        default:
            requests.append(u"https://"_s + site + u"/wp-content/themes/" + word(random, 5, 9)
                            + u"/style.css?ver=6.4." + number().left(1));
        }
    }
    return requests;
}

struct Deciding
{
    Seconds compiling;
    Seconds request;
    int blocked = 0;
    qint64 memory = 0; ///< at its peak, of the whole process, in bytes
};

Measured<Deciding> measureOwn(const QString &rules, const QStringList &requests)
{
    QElapsedTimer clock;
    clock.start();
    const auto compiled = CompiledRuleList::compile(rules);
    Deciding result{.compiling = elapsed(clock), .request = {}};
    if (!compiled)
        return std::unexpected(compiled.error().description());
    std::vector<ContentRequest> all;
    for (const QString &request : requests)
        all.push_back({QUrl(request), QUrl(page), ResourceType::Script});
    QList<Seconds> times;
    for (const ContentRequest &request : all) {
        clock.restart();
        result.blocked += compiled->list->blocks(request) ? 1 : 0;
        times.append(elapsed(clock));
    }
    result.request = median(times);
    result.memory = peakMemory(getpid());
    return result;
}

Measured<Deciding> measurePeer(const QStringList &domains, const QStringList &requests)
{
    const QTemporaryDir temporary;
    QFile input(temporary.filePath(u"input.json"_s));
    if (!input.open(QIODevice::WriteOnly))
        return std::unexpected(input.errorString());
    input.write(QJsonDocument(QJsonObject{{u"domains"_s, QJsonArray::fromStringList(domains)},
                                          {u"page"_s, page},
                                          {u"requests"_s, QJsonArray::fromStringList(requests)}})
                    .toJson(QJsonDocument::Compact));
    input.close();
    const auto said =
        askNpmPeer(u"finder"_s, u"@ghostery/adblocker"_s, u"2.18"_s, {input.fileName()});
    if (!said)
        return std::unexpected(said.error());
    return Deciding{Seconds((*said)[u"compiling"].toDouble()),
                    Seconds((*said)[u"request"].toDouble()), (*said)[u"blocked"].toInt(),
                    (*said)[u"peakMemory"].toInteger()};
}

/// The longest time for which an edit of the list keeps the window from answering.
Seconds measureHold(SnifferAdBlocker &blocker)
{
    Seconds longest{};
    QElapsedTimer clock;
    clock.start();
    blocker.addDomain(u"one-more.example"_s);
    longest = elapsed(clock);
    while (blocker.isCompiling()) {
        clock.restart();
        QCoreApplication::processEvents();
        longest = std::max(longest, elapsed(clock));
    }
    return longest;
}

/// Counts what has been written.
class CountingDefaults final : public UserDefaults
{
public:
    explicit CountingDefaults(const QString &folder)
        : m_files(folder)
    {
    }

    std::optional<QByteArray> data(const QString &key) const override { return m_files.data(key); }
    std::expected<void, UserDefaultsError> setData(const QString &key,
                                                   const QByteArray &value) override
    {
        auto result = m_files.setData(key, value);
        ++writes;
        return result;
    }
    std::expected<void, UserDefaultsError> remove(const QString &key) override
    {
        return m_files.remove(key);
    }
    std::expected<void, UserDefaultsError> setAside(const QString &key) override
    {
        return m_files.setAside(key);
    }

    std::atomic<int> writes = 0;

private:
    FileUserDefaults m_files;
};

/// From the visit to its being on disk, with a history that is full.
Seconds measureVisit()
{
    const QTemporaryDir folder;
    CountingDefaults defaults(folder.path());
    QtScheduler scheduler;
    FakeFilePanels panels;
    SnifferSavedWebsiteStore store(defaults, scheduler, panels);
    QList<Seconds> times;
    for (int i = 0; i < 300; ++i) {
        const int before = defaults.writes;
        QElapsedTimer clock;
        clock.start();
        store.recordVisit(u"https://site%1.example/watch?v=%1"_s.arg(i), u"Some page's title"_s);
        while (defaults.writes == before)
            QCoreApplication::processEvents();
        if (i > 100)
            times.append(elapsed(clock));
    }
    return median(times);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    std::mt19937 random(1);
    const QStringList domains = makeDomains(random);
    const QStringList requests = makeRequests(domains, random);

    FakeUserDefaults defaults;
    defaults.values.insert(
        u"VarnAdBlockerUserDomains"_s,
        QJsonDocument(QJsonArray::fromStringList(domains)).toJson(QJsonDocument::Compact));
    QtScheduler scheduler;
    CompilingRuleListStore store(scheduler);
    SnifferAdBlocker blocker(defaults, scheduler, store);
    while (blocker.isCompiling())
        QCoreApplication::processEvents();

    const auto own = measureOwn(blocker.generateRulesJSON(), requests);
    const auto peer = measurePeer(domains, requests);
    const auto ratio = [&](Seconds Deciding::*time) -> Measured<double> {
        if (!own || !peer)
            return std::unexpected(own ? peer.error() : own.error());
        if (own->blocked != peer->blocked)
            return std::unexpected(u"%1 requests are blocked, by the peer %2."_s.arg(
                QString::number(own->blocked), QString::number(peer->blocked)));
        return *own.*time / *peer.*time;
    };
    const auto inMicroseconds = [](Seconds time) -> QString {
        return QString::number(time.count() * 1e6, 'f', 2) + u" µs"_s;
    };
    const Deciding ours = own.value_or(Deciding());
    const Deciding theirs = peer.value_or(Deciding());
    const Memory memory{.own = ours.memory, .peer = theirs.memory};
    const Measured<double> toLimit =
        own ? Measured<double>(ours.request / longestRequest) : std::unexpected(own.error());
    const Seconds hold = measureHold(blocker);
    const Seconds visit = measureVisit();
    using enum Limit::Kind;
    return report(
        u"finder"_s,
        {
            {u"deciding a request with 100,000 domains, to 1 µs"_s, toLimit,
             inMicroseconds(ours.request), Limit{AtMost, 1}, Memory{.own = ours.memory}},
            {u"deciding a request, to @ghostery/adblocker"_s, ratio(&Deciding::request),
             inMicroseconds(ours.request) + u", the peer " + inMicroseconds(theirs.request),
             Limit{AtMost, 0.4}, memory},
            {u"compiling 100,000 domains, to @ghostery/adblocker"_s, ratio(&Deciding::compiling),
             milliseconds(ours.compiling) + u", the peer " + milliseconds(theirs.compiling),
             Limit{AtMost, 1}, memory},
            {u"longest hold of the main thread by an edit, to 16 ms"_s, hold / frame,
             milliseconds(hold), Limit{Below, 1}},
            {u"recording a visit and writing it, to 2 ms"_s, visit / longestVisit,
             milliseconds(visit), Limit{Below, 1}},
        });
}
