#include "platform/pulse/PulseMonitor.h"
#include "tests/e2e/servers/ChildProcess.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

/// The server counts its modules from 0.
const QString loudOutput = u"1"_s;

/// What is heard now.
struct Ear
{
    std::atomic<int> pieces = 0;
    std::atomic<float> loudest = 0;
    std::atomic<int> lost = 0;
    // Before what it tells.
    std::unique_ptr<PulseMonitor> monitor = std::make_unique<PulseMonitor>(
        AudioCaptureRequest{.sampleRate = 48'000,
                            .channels = 2,
                            .sample =
                                [this](const AudioSample &sample) {
                                    float peak = 0;
                                    for (const float value : sample.data)
                                        peak = std::max(peak, std::abs(value));
                                    loudest = peak;
                                    ++pieces;
                                },
                            .becameUnavailable = [this] { ++lost; }});

    /// New pieces come, and they are loud, or silent, after the change that went before.
    bool hears(bool loud)
    {
        const auto settled = [&] {
            const int before = pieces;
            return QTest::qWaitFor([&] { return pieces >= before + 10; }, 500)
                && (loudest > 0.01F) == loud;
        };
        return QTest::qWaitFor(settled, 10'000) && settled();
    }
};

} // namespace

/// A server with two outputs, of which the second one plays a tone, and a microphone that hears
/// one.
class PulseMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void followsTheDefaultOutput();
    void neverTurnsToTheMicrophone();
    void saysWhenTheServerGoes();

private:
    /// Has the server do something; its answer.
    static bool command(const QStringList &arguments)
    {
        ChildProcess pactl;
        return pactl.start(u"pactl"_s, arguments, {}).has_value() && pactl.waitForFinished(10s)
            && pactl.exitCode() == 0;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ChildProcess> m_server;
};

void PulseMonitorTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_server = std::make_unique<ChildProcess>();
    const QString socket = m_folder->filePath(u"pulse"_s);
    for (const char *name : {"XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
        qputenv(name, m_folder->path().toLocal8Bit());
    QVERIFY(m_server->start(
        u"pulseaudio"_s,
        {u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s, u"--use-pid-file=no"_s,
         u"--load=module-null-sink sink_name=quiet"_s, u"--load=module-null-sink sink_name=loud"_s,
         u"--load=module-sine sink=loud"_s, u"--load=module-sine-source source_name=microphone"_s,
         u"--load=module-native-protocol-unix auth-anonymous=1 socket=%1"_s.arg(socket)},
        {}));
    QTRY_VERIFY(QFileInfo::exists(socket));
    qputenv("PULSE_SERVER", "unix:" + socket.toLocal8Bit());
    QVERIFY(command({u"set-default-sink"_s, u"quiet"_s}));
    QVERIFY(command({u"set-default-source"_s, u"microphone"_s}));
}

void PulseMonitorTest::cleanup()
{
    m_server.reset();
    m_folder.reset();
}

void PulseMonitorTest::followsTheDefaultOutput()
{
    Ear ear;
    QVERIFY(ear.hears(false));
    QVERIFY(command({u"set-default-sink"_s, u"loud"_s}));
    QVERIFY(ear.hears(true));
    // The server moves the tone along.
    QVERIFY(command({u"set-default-sink"_s, u"quiet"_s}));
    QVERIFY(ear.hears(true));
    QCOMPARE(ear.lost, 0);
}

void PulseMonitorTest::neverTurnsToTheMicrophone()
{
    QVERIFY(command({u"set-default-sink"_s, u"loud"_s}));
    Ear ear;
    QVERIFY(ear.hears(true));
    QVERIFY(command({u"unload-module"_s, u"module-sine"_s}));
    QVERIFY(ear.hears(false));
    // The default output goes, and the other one takes over.
    QVERIFY(command({u"unload-module"_s, loudOutput}));
    QVERIFY(ear.hears(false));
    QCOMPARE(ear.lost, 0);
    QVERIFY(command({u"unload-module"_s, u"module-null-sink"_s}));
    QTRY_COMPARE(ear.lost, 1);
    const int pieces = ear.pieces;
    QTest::qWait(300);
    QCOMPARE(ear.pieces, pieces);
    QVERIFY(ear.loudest < 0.01F);
}

void PulseMonitorTest::saysWhenTheServerGoes()
{
    Ear ear;
    QVERIFY(ear.hears(false));
    m_server.reset();
    QTRY_COMPARE(ear.lost, 1);
}

QTEST_GUILESS_MAIN(PulseMonitorTest)
#include "tst_pulsemonitor.moc"
