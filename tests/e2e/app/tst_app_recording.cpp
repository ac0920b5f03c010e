#include "tests/e2e/app/AppWorld.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

constexpr int bits = 10;

QString ffmpegOutput(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.waitForFinished(120'000);
    return QString::fromUtf8(process.readAll()).trimmed();
}

QString probe(const QString &file, const QString &stream, const QString &entries)
{
    return ffmpegOutput(u"ffprobe"_s,
                        {u"-v"_s, u"error"_s, u"-select_streams"_s, stream, u"-show_entries"_s,
                         entries, u"-of"_s, u"csv=p=0"_s, file});
}

/// A film whose pictures show their number in white and black boxes, with a tone.
bool makeCountingFilm(const QString &path)
{
    QStringList boxes;
    for (int bit = 0; bit < bits; ++bit)
        boxes << u"drawbox=x=%1:y=288:w=128:h=144:color=white:t=fill:enable='gte(mod(n,%2),%3)'"_s
                     .arg(bit * 128)
                     .arg(2 << bit)
                     .arg(1 << bit);
    ffmpegOutput(u"ffmpeg"_s,
                 {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                  u"color=black:s=1280x720:r=30:d=30"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                  u"sine=frequency=440:sample_rate=48000:duration=30"_s, u"-vf"_s, boxes.join(u','),
                  u"-preset"_s, u"ultrafast"_s, u"-pix_fmt"_s, u"yuv420p"_s, path});
    return QFileInfo(path).size() > 0;
}

/// The numbers that the pictures of a recording of that film show.
QList<int> countedNumbers(const QString &recording)
{
    const QTemporaryDir folder;
    const QString raw = folder.filePath(u"raw"_s);
    ffmpegOutput(u"ffmpeg"_s,
                 {u"-v"_s, u"error"_s, u"-i"_s, recording, u"-vsync"_s, u"passthrough"_s, u"-f"_s,
                  u"rawvideo"_s, u"-pix_fmt"_s, u"gray"_s, raw});
    const QStringList sides = probe(recording, u"v"_s, u"stream=width,height"_s).split(u',');
    const qsizetype width = sides.value(0).toInt();
    const qsizetype height = sides.value(1).toInt();
    QFile file(raw);
    QList<int> numbers;
    if (!file.open(QIODevice::ReadOnly) || width * height == 0)
        return numbers;
    while (true) {
        const QByteArray picture = file.read(width * height);
        if (picture.size() < width * height)
            return numbers;
        int number = 0;
        for (int bit = 0; bit < bits; ++bit) {
            const auto gray =
                uchar(picture[height / 2 * width + width * (2 * bit + 1) / (2 * bits)]);
            number |= gray > 128 ? 1 << bit : 0;
        }
        numbers.append(number);
    }
}

} // namespace

class AppRecordingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<AppWorld>(); }
    void cleanup() { m_world.reset(); }

    void recordsWhatPlays();
    void recordsInHd();
    void recordsAStillPicture();
    void refusesABadDuration();
    void goesOnWithoutSound();

private:
    bool startWithKeyboard(const QString &stopAfter = {});
    double recordFor(std::chrono::milliseconds time);
    QString saved() const
    {
        return m_world->recording().controller()->lastSavedURL().toLocalFile();
    }

    QTemporaryDir m_folder;
    QString m_film = m_folder.filePath(u"film.mp4"_s);
    ChildProcess m_pulse;
    std::unique_ptr<AppWorld> m_world;
};

void AppRecordingTest::initTestCase()
{
    QVERIFY(makeCountingFilm(m_film));
    const QString socket = m_folder.filePath(u"pulse"_s);
    for (const char *name : {"XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
        qputenv(name, m_folder.path().toLocal8Bit());
    QVERIFY(m_pulse.start(
        u"pulseaudio"_s,
        {u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s, u"--use-pid-file=no"_s,
         u"--load=module-null-sink"_s,
         u"--load=module-native-protocol-unix auth-anonymous=1 socket=%1"_s.arg(socket)},
        {}));
    QTRY_VERIFY(QFileInfo::exists(socket));
    qputenv("PULSE_SERVER", "unix:" + socket.toLocal8Bit());
}

bool AppRecordingTest::startWithKeyboard(const QString &stopAfter)
{
    m_world->press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::qWait(500);
    if (!stopAfter.isEmpty()) {
        // From the name over the button of the folder to the duration.
        m_world->press(Qt::Key_Tab);
        m_world->press(Qt::Key_Tab);
        m_world->type(stopAfter);
    }
    m_world->press(Qt::Key_Return);
    return becomesTrue([&] {
        return m_world->recording().controller()->state() == PlayerRecordingState::recording
            || m_world->recording().noticeIsError();
    });
}

/// Records, and returns how long that was, in seconds.
double AppRecordingTest::recordFor(std::chrono::milliseconds time)
{
    QElapsedTimer clock;
    clock.start();
    QTest::qWait(int(time.count()));
    const double recorded = double(clock.nsecsElapsed()) / 1e9;
    m_world->recording().stop();
    const bool ended = becomesTrue(
        [&] { return m_world->recording().controller()->state() == PlayerRecordingState::idle; });
    return ended ? recorded : 0;
}

void AppRecordingTest::recordsWhatPlays()
{
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(3));
    QVERIFY(startWithKeyboard());
    QCOMPARE(m_world->recording().controller()->errorMessage(), QString());
    const double recorded = recordFor(5s);
    QCOMPARE(m_world->recording().notice(), u"The MP4 recording was saved."_s);
    const QString file = saved();

    QVERIFY(probe(file, u"v"_s, u"stream=codec_name,profile"_s).startsWith(u"h264,High"));
    QVERIFY(probe(file, u"a"_s, u"stream=codec_name,sample_rate,channels"_s)
                .startsWith(u"aac,48000,2"));
    const double duration = probe(file, u"v"_s, u"format=duration"_s).toDouble();
    QVERIFY2(std::abs(duration - recorded) < 0.1,
             qPrintable(u"%1 s in %2 s"_s.arg(duration).arg(recorded)));
    const QString volume = ffmpegOutput(
        u"ffmpeg"_s, {u"-i"_s, file, u"-af"_s, u"volumedetect"_s, u"-f"_s, u"null"_s, u"-"_s});
    static const QRegularExpression mean(u"mean_volume: (-?[0-9.]+) dB"_s);
    QVERIFY2(mean.match(volume).captured(1).toDouble() < 0
                 && mean.match(volume).captured(1).toDouble() > -40,
             qPrintable(volume));

    const QList<int> numbers = countedNumbers(file);
    QVERIFY2(numbers.size() > recorded * 8 && numbers.size() <= recorded * 31 + 2,
             qPrintable(QString::number(numbers.size())));
    QStringList seen;
    for (const int number : numbers)
        seen << QString::number(number);
    QVERIFY2(std::ranges::is_sorted(numbers) && numbers.first() >= 60, qPrintable(seen.join(u' ')));
    const int passed = numbers.last() - numbers.first();
    QVERIFY2(std::abs(passed - recorded * 30) < 15, qPrintable(QString::number(passed)));
}

void AppRecordingTest::recordsInHd()
{
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(1));
    m_world->recording().startHd();
    QTest::qWait(500);
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return m_world->recording().isRecording(); }));
    QVERIFY(recordFor(2s) > 0);
    const QStringList sides = probe(saved(), u"v"_s, u"stream=width,height"_s).split(u',');
    QVERIFY(sides.value(0).toInt() == 1920 || sides.value(1).toInt() == 1080);
    QVERIFY(QFileInfo(saved()).fileName().startsWith(u"Lumaro HD Recording "));
}

void AppRecordingTest::recordsAStillPicture()
{
    QVERIFY(startWithKeyboard());
    const double recorded = recordFor(3s);
    const double duration = probe(saved(), u"v"_s, u"format=duration"_s).toDouble();
    QVERIFY2(std::abs(duration - recorded) < 0.1,
             qPrintable(u"%1 s in %2 s"_s.arg(duration).arg(recorded)));
}

void AppRecordingTest::refusesABadDuration()
{
    QVERIFY(startWithKeyboard(u"45s"_s));
    QVERIFY(m_world->recording().noticeIsError());
    QVERIFY(m_world->recording().notice().startsWith(u"Enter a valid duration"));
    QVERIFY(!m_world->recording().isRecording());
}

void AppRecordingTest::goesOnWithoutSound()
{
    const QByteArray server = qgetenv("PULSE_SERVER");
    qputenv("PULSE_SERVER", "unix:/nowhere");
    QVERIFY(startWithKeyboard());
    QVERIFY(becomesTrue([&] { return m_world->recording().isWithoutSound(); }));
    QVERIFY(recordFor(1s) > 0);
    qputenv("PULSE_SERVER", server);
    QCOMPARE(probe(saved(), u"a"_s, u"stream=codec_name"_s), QString());
    QVERIFY(probe(saved(), u"v"_s, u"stream=codec_name"_s).startsWith(u"h264"));
}

LUMARO_APP_TEST_MAIN(AppRecordingTest)
#include "tst_app_recording.moc"
