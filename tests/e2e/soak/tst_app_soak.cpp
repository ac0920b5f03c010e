#include "tests/e2e/servers/OwnProcess.h"
#include "tests/e2e/soak/Heartbeat.h"
#include "tests/e2e/soak/SoakActions.h"

#include <QElapsedTimer>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

#ifdef __SANITIZE_ADDRESS__
/// Leaves out what the sanitizer says of others: leaks of the drivers and the browser, types that
/// the browser's module shares with the program, and the browser's ways to delete.
extern "C" const char *__asan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "detect_leaks=0:detect_stack_use_after_return=1:detect_odr_violation=0:"
           "new_delete_type_mismatch=0";
}
#endif

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

/// A window that does not react for longer is one that hangs; the sanitizers make everything a few
/// times slower.
constexpr std::chrono::milliseconds longestSilence = isSanitized ? 40s : 10s;

/// In kilobytes: what the software renderer takes for windows of other sizes than before, what the
/// browser keeps, and gaps between the allocator's pieces. In runs of 15 minutes between 1 and 30
/// megabytes have been seen, next to nothing of which this program itself had allocated.
constexpr qint64 memoryBound = 60 * 1024;
/// Minutes after its start, once, the browser opens another database, of eight files, for each of
/// its two profiles; besides, clients keep a few connections for the next request.
constexpr int descriptorBound = 2 * 8 + 8;
/// Pools keep threads for a while; how many depends on what came last.
constexpr int threadBound = 12;
/// The browser keeps up to two processes for the next page.
constexpr int descendantBound = 2;

unsigned environmentNumber(const char *name, unsigned otherwise)
{
    bool isNumber = false;
    const unsigned value = qEnvironmentVariable(name).toUInt(&isNumber);
    return isNumber ? value : otherwise;
}

/// Of the part after everything has been opened once.
std::chrono::seconds soakDuration()
{
    return std::chrono::seconds(environmentNumber("LUMARO_SOAK_SECONDS", 30));
}

QString described(const OwnProcess &figures)
{
    return u"%1 MB (%2 MB of them allocated), %3 descriptors, %4 threads, %5 processes"_s
        .arg(figures.memory / 1024)
        .arg(figures.allocated / 1024)
        .arg(figures.descriptors)
        .arg(figures.threads)
        .arg(figures.descendants);
}

} // namespace

/// The whole application is used at random, with servers that fail at random: it neither crashes
/// nor hangs nor contradicts itself, and when everything is closed it holds what it held before.
class AppSoakTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comesToRestAsBefore();
    void cleanup() { m_world.reset(); }

private:
    void say(const QString &text);
    /// Both return whether all is well; otherwise the test has failed.
    bool take(const SoakAction &action);
    bool soakUntil(std::chrono::milliseconds end);
    bool rest();
    bool failed(const QString &reason);

    // Who guards a landing wants the same steps every time.
    const unsigned m_seed = environmentNumber("LUMARO_SOAK_SEED", 1);
    std::unique_ptr<SoakWorld> m_world;
    std::unique_ptr<Heartbeat> m_heart;
    QElapsedTimer m_clock;
    QStringList m_lastSteps;
};

/// Said at once, so that it stands there even after a crash.
void AppSoakTest::say(const QString &text)
{
    const QString line = u"%1 s  %2"_s.arg(double(m_clock.elapsed()) / 1000, 7, 'f', 1).arg(text);
    std::fprintf(stderr, "%s\n", qPrintable(line));
    m_lastSteps << line;
    if (m_lastSteps.size() > 20)
        m_lastSteps.removeFirst();
}

bool AppSoakTest::failed(const QString &reason)
{
    QTest::qFail(
        qPrintable(u"%1\nLUMARO_SOAK_SEED=%2, the last steps:\n%3"_s.arg(reason).arg(m_seed).arg(
            m_lastSteps.join(u'\n'))),
        __FILE__, __LINE__);
    return false;
}

bool AppSoakTest::take(const SoakAction &action)
{
    say(action.name);
    m_world->moody().changeMoods(m_world->dice());
    if (const QString wrong = action.run(*m_world); !wrong.isEmpty())
        return failed(wrong);
    // Mostly a user looks at what happens; sometimes not.
    const int looks = m_world->dice().hits(20) ? 0 : 50 + m_world->dice().below(1000);
    letPass(std::chrono::milliseconds(looks));
    const QString contradiction = m_world->contradiction();
    return contradiction.isEmpty() || failed(contradiction);
}

bool AppSoakTest::soakUntil(std::chrono::milliseconds end)
{
    const QList<SoakAction> actions = soakActions();
    qint64 told = m_clock.elapsed();
    while (m_clock.elapsed() < end.count()) {
        if (!take(m_world->dice().oneOf(actions)))
            return false;
        if (m_clock.elapsed() - told > 60'000) {
            told = m_clock.elapsed();
            say(described(OwnProcess::now()));
        }
    }
    return true;
}

bool AppSoakTest::rest()
{
    const QString open = m_world->closeEverything();
    if (!open.isEmpty())
        return failed(u"This does not end: "_s + open);
    // What was used ends in its own time.
    letPass(5s);
    return true;
}

void AppSoakTest::comesToRestAsBefore()
{
    m_world = SoakWorld::start(m_seed);
    QVERIFY(m_world);
    m_heart = std::make_unique<Heartbeat>(longestSilence);
    m_clock.start();
    say(u"LUMARO_SOAK_SEED=%1"_s.arg(m_seed));

    // What is loaded and kept for good comes with the first time.
    for (const SoakAction &action : soakActions())
        QVERIFY(take(action));
    const auto begin = std::chrono::milliseconds(m_clock.elapsed());
    QVERIFY(soakUntil(begin + soakDuration() / 3));
    QVERIFY(rest());
    const OwnProcess before = OwnProcess::now();
    const QMap<QString, int> descriptorsBefore = ownDescriptors();
    say(u"at rest: "_s + described(before));

    QVERIFY(soakUntil(begin + soakDuration()));
    say(u"before the end: "_s + described(OwnProcess::now()));
    QVERIFY(rest());
    // Some of it takes longer.
    OwnProcess after;
    const bool isAsBefore = becomesTrue([&] {
        after = OwnProcess::now();
        return (isSanitized || after.memory <= before.memory + memoryBound)
            && after.descriptors <= before.descriptors + descriptorBound
            && after.threads <= before.threads + threadBound
            && after.descendants <= before.descendants + descendantBound;
    });
    say(u"at rest: "_s + described(after));
    say(u"the longest that the main thread was busy: %1 ms"_s.arg(
        m_heart->longestSilence().count()));
    say(u"happened: "_s + m_world->tally().described());
    if (soakDuration() > 4min)
        QCOMPARE(m_world->tally().missing(), QStringList());
    if (isAsBefore)
        return;
    const QMap<QString, int> descriptors = ownDescriptors();
    for (auto kind = descriptors.cbegin(); kind != descriptors.cend(); ++kind)
        say(u"%1: %2, before %3"_s.arg(kind.key())
                .arg(kind.value())
                .arg(descriptorsBefore.value(kind.key())));
    failed(u"It has %1; before, it had %2."_s.arg(described(after), described(before)));
}

int main(int argc, char *argv[])
{
    // Qt Test's own limit would end a long run.
    const auto limit = std::chrono::milliseconds(soakDuration() + 10min);
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(qint64(limit.count())));
    return runAppTest(argc, argv, [&] {
        AppSoakTest test;
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_app_soak.moc"
