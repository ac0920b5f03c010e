#include "platform/DefaultsWriter.h"
#include "platform/qt/QtScheduler.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QTest>

#include <mutex>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QString key = u"key"_s;

DefaultsWriter::Encode value(const QByteArray &bytes)
{
    return [bytes] { return bytes; };
}

struct World
{
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    /// How the attempts ended; empty texts for success.
    QStringList results;
    std::unique_ptr<DefaultsWriter> writer = std::make_unique<DefaultsWriter>(
        defaults, scheduler, key, [this](const DefaultsWriter::Result &result) {
            results.append(result ? QString() : result.error().description());
        });
};

/// Remembers every value it is given, on whatever thread, and takes its time over each.
class SlowDefaults final : public UserDefaults
{
public:
    std::optional<QByteArray> data(const QString &) const override { return std::nullopt; }
    std::expected<void, UserDefaultsError> setData(const QString &,
                                                   const QByteArray &value) override
    {
        overlapped = overlapped || !m_busy.try_lock();
        std::this_thread::yield();
        stored.append(value.toInt());
        m_busy.unlock();
        return {};
    }
    std::expected<void, UserDefaultsError> remove(const QString &) override { return {}; }
    std::expected<void, UserDefaultsError> setAside(const QString &) override { return {}; }

    QList<int> stored;
    bool overlapped = false;

private:
    std::mutex m_busy;
};

} // namespace

class DefaultsWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storesOnlyTheNewest();
    void storesWhatComesDuringAStore();
    void destroyingStoresWhatWaits();
    void failureWaitsForTheNextCall_data();
    void failureWaitsForTheNextCall();
    void keepsTheOrderAcrossThreads();
};

void DefaultsWriterTest::storesOnlyTheNewest()
{
    World world;
    for (const char *bytes : {"a", "b", "c"})
        world.writer->write(value(bytes));
    QCOMPARE(world.defaults.data(key), std::nullopt);
    world.scheduler.runBackground();
    QCOMPARE(world.defaults.data(key), "c");
    QCOMPARE(world.defaults.writes, 1);
}

void DefaultsWriterTest::storesWhatComesDuringAStore()
{
    World world;
    world.writer->write([&] {
        world.writer->write(value("b"));
        return QByteArray("a");
    });
    world.scheduler.runBackground();
    QCOMPARE(world.defaults.data(key), "b");
    QCOMPARE(world.defaults.writes, 2);
}

void DefaultsWriterTest::destroyingStoresWhatWaits()
{
    World world;
    world.writer->write(value("a"));
    world.writer->write(value("b"));
    world.writer.reset();
    QCOMPARE(world.defaults.data(key), "b");

    // The job that was never begun finds nothing to do.
    world.defaults.values.clear();
    world.scheduler.runBackground();
    QCOMPARE(world.defaults.data(key), std::nullopt);
    QCOMPARE(world.results, QStringList());
}

void DefaultsWriterTest::failureWaitsForTheNextCall_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("write") << u"write"_s << QByteArray("newer");
    QTest::newRow("flush") << u"flush"_s << QByteArray("new");
    QTest::newRow("destruction") << u"destroy"_s << QByteArray("new");
}

void DefaultsWriterTest::failureWaitsForTheNextCall()
{
    QFETCH(const QString, call);
    World world;
    world.defaults.values.insert(key, "old");
    world.defaults.failure = UserDefaultsError{UserDefaultsError::Kind::NoSpace};
    world.writer->write(value("new"));
    world.scheduler.runBackground();
    QCOMPARE(world.results, QStringList{u"There is no space left on the disk."_s});
    QVERIFY(!world.writer->flush());
    QCOMPARE(world.defaults.data(key), "old");

    world.defaults.failure.reset();
    if (call == u"write")
        world.writer->write(value("newer"));
    else if (call == u"flush")
        QVERIFY(world.writer->flush());
    else
        world.writer.reset();
    world.scheduler.runBackground();
    QTEST(world.defaults.data(key).value(), "stored");
}

void DefaultsWriterTest::keepsTheOrderAcrossThreads()
{
    constexpr int last = 2000;
    QtScheduler scheduler;
    SlowDefaults defaults;
    {
        DefaultsWriter writer(defaults, scheduler, key, [](const auto &) { });
        for (int i = 1; i <= last; ++i) {
            writer.write(value(QByteArray::number(i)));
            if (i % 3 == 0)
                QCoreApplication::processEvents();
            if (i % 100 == 0)
                QVERIFY(writer.flush());
        }
    }
    QVERIFY(!defaults.overlapped);
    QCOMPARE(defaults.stored.last(), last);
    QVERIFY(std::ranges::is_sorted(defaults.stored));
    QVERIFY(std::ranges::adjacent_find(defaults.stored) == defaults.stored.end());
}

QTEST_GUILESS_MAIN(DefaultsWriterTest)
#include "tst_defaultswriter.moc"
