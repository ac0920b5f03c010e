#include "platform/qt/SingleInstance.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <future>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Outcome = SingleInstance::Outcome;
using Request = SingleInstance::Request;

namespace {

struct World
{
    QTemporaryDir folder;
    QList<Request> requests;

    QString settings() const { return folder.filePath(u"settings"_s); }
    std::unique_ptr<SingleInstance> instance(const QString &settings)
    {
        auto instance = std::make_unique<SingleInstance>(settings, folder.path());
        QObject::connect(instance.get(), &SingleInstance::requested, instance.get(),
                         [this](const Request &request) { requests.append(request); });
        return instance;
    }
    std::unique_ptr<SingleInstance> first()
    {
        auto instance = this->instance(settings());
        return instance->claim({}) == Outcome::First ? std::move(instance) : nullptr;
    }
    /// Another start, on its own thread, while the first one's event loop runs.
    Outcome start(const Request &request) const
    {
        auto outcome = std::async(std::launch::async, [this, request] {
            SingleInstance later(settings(), folder.path());
            return later.claim(request);
        });
        while (outcome.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return outcome.get();
    }
};

QByteArray message(quint32 magic, quint32 size, const QByteArray &body)
{
    QByteArray message(8, '\0');
    qToBigEndian(magic, message.data());
    qToBigEndian(size, message.data() + 4);
    return message + body;
}

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void handsOver_data();
    void handsOver();
    void newOneTakesOver();
    void othersSettingsAreOthers();
    void leftSocketIsNoHindrance_data();
    void leftSocketIsNoHindrance();
    void surviveHostileMessages_data();
    void surviveHostileMessages();
    void survivesACrowd();
    void onlyTheUserMayConnect();
    void runsWithoutAPlaceForTheLock();
    void locksWithoutALockFile();
};

void SingleInstanceTest::handsOver_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("taken");
    const auto row = [](const char *name, const QStringList &arguments) {
        QTest::newRow(name) << arguments << arguments;
    };
    row("nothing", {});
    row("one", {u"../a b.mp4"_s});
    row("several", {u"a"_s, u""_s, u"http://h/ü?x=😀"_s});
    row("long", {QString(100'000, u'x')});
    QTest::newRow("too many") << QStringList(3, QString(100'000, u'x'))
                              << QStringList(2, QString(100'000, u'x'));
    QTest::newRow("too long") << QStringList{QString(300'000, u'x')} << QStringList();
}

void SingleInstanceTest::handsOver()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QStringList, taken);
    World world;
    const auto first = world.first();
    QVERIFY(first);
    QCOMPARE(world.start({arguments, u"/home/mé"_s, "token"}), Outcome::HandedOver);
    QTRY_COMPARE(world.requests.size(), 1);
    QCOMPARE(world.requests.first().arguments, taken);
    QCOMPARE(world.requests.first().workingFolder, u"/home/mé"_s);
    QCOMPARE(world.start({}), Outcome::HandedOver);
    QTRY_COMPARE(world.requests.size(), 2);
}

void SingleInstanceTest::newOneTakesOver()
{
    World world;
    auto first = world.first();
    first.reset();
    first = world.first();
    QVERIFY(first);
    QCOMPARE(world.start({{u"a"_s}, {}, {}}), Outcome::HandedOver);
    QTRY_COMPARE(world.requests.size(), 1);
}

void SingleInstanceTest::othersSettingsAreOthers()
{
    World world;
    const auto first = world.first();
    const auto other = world.instance(world.folder.filePath(u"other"_s));
    QCOMPARE(other->claim({}), Outcome::First);
    QVERIFY(other->socketPath() != first->socketPath());

    // Another name for the same folder is the same.
    const QString link = world.folder.filePath(u"link"_s);
    QVERIFY(QFile::link(world.settings(), link));
    QCOMPARE(SingleInstance(link, world.folder.path()).socketPath(), first->socketPath());
}

void SingleInstanceTest::leftSocketIsNoHindrance_data()
{
    QTest::addColumn<QString>("kind");
    for (const QString &kind : {u"socket"_s, u"file"_s, u"broken link"_s})
        QTest::newRow(qPrintable(kind)) << kind;
}

void SingleInstanceTest::leftSocketIsNoHindrance()
{
    QFETCH(const QString, kind);
    World world;
    const QString path = world.instance(world.settings())->socketPath();
    if (kind == u"socket") {
        // As after a crash: bound, but nobody listens.
        const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, qPrintable(path), sizeof(address.sun_path));
        QCOMPARE(bind(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
        close(descriptor);
    } else if (kind == u"file") {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else {
        QVERIFY(QFile::link(u"/nowhere"_s, path));
    }
    const auto first = world.first();
    QVERIFY(first);
    QCOMPARE(world.start({}), Outcome::HandedOver);
}

void SingleInstanceTest::surviveHostileMessages_data()
{
    QTest::addColumn<QByteArray>("bytes");
    constexpr quint32 magic = 0x4c554d31;
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a head") << message(magic, 1, {}).first(5);
    QTest::newRow("half a body") << message(magic, 100, "/home");
    QTest::newRow("no fields") << message(magic, 0, {});
    QTest::newRow("one field") << message(magic, 1, "/");
    QTest::newRow("other magic") << message(magic + 1, 3, QByteArray("a\0b", 3));
    QTest::newRow("more than said") << message(magic, 3, QByteArray("a\0bc", 4));
    QTest::newRow("4 GB announced") << message(magic, 0xffffffff, "x");
    QTest::newRow("a megabyte") << QByteArray(1 << 20, 'x');
    QTest::newRow("a megabyte announced") << message(magic, 1 << 20, QByteArray(1 << 20, 'x'));
}

void SingleInstanceTest::surviveHostileMessages()
{
    QFETCH(const QByteArray, bytes);
    World world;
    const auto first = world.first();
    QLocalSocket hostile;
    hostile.connectToServer(first->socketPath());
    QVERIFY(hostile.waitForConnected());
    hostile.write(bytes);
    hostile.flush();
    // Meanwhile others are heard.
    QCOMPARE(world.start({{u"a"_s}, {}, {}}), Outcome::HandedOver);
    QTRY_COMPARE(world.requests.size(), 1);
    hostile.abort();
    QCOMPARE(world.start({{u"b"_s}, {}, {}}), Outcome::HandedOver);
    QTRY_COMPARE(world.requests.size(), 2);
}

void SingleInstanceTest::survivesACrowd()
{
    World world;
    const auto first = world.first();
    std::vector<std::unique_ptr<QLocalSocket>> crowd;
    for (int i = 0; i < 3 * SingleInstance::maximumConnections; ++i) {
        crowd.push_back(std::make_unique<QLocalSocket>());
        crowd.back()->connectToServer(first->socketPath());
        QCoreApplication::processEvents();
    }
    const auto connected = [&crowd] {
        return std::ranges::count_if(crowd, [](const auto &socket) {
            return socket->state() == QLocalSocket::ConnectedState;
        });
    };
    QTRY_VERIFY(connected() <= SingleInstance::maximumConnections);
    crowd.clear();
    QCOMPARE(world.start({}), Outcome::HandedOver);
}

void SingleInstanceTest::onlyTheUserMayConnect()
{
    World world;
    const auto first = world.first();
    struct stat status{};
    QCOMPARE(stat(qPrintable(first->socketPath()), &status), 0);
    QCOMPARE(status.st_mode & 077, 0U);
}

void SingleInstanceTest::runsWithoutAPlaceForTheLock()
{
    World world;
    QFile file(world.settings());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(world.first());
}

void SingleInstanceTest::locksWithoutALockFile()
{
    World world;
    QVERIFY(QDir().mkpath(world.settings() + u"/lock"));
    const auto first = world.first();
    QVERIFY(first);
    QCOMPARE(world.start({{u"a"_s}, {}, {}}), Outcome::HandedOver);
    QTRY_COMPARE(world.requests.size(), 1);
}

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "tst_singleinstance.moc"
