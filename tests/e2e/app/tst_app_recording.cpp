#include "tests/e2e/app/AppWorld.h"
#include "tests/e2e/servers/StandingDisk.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>

#include <algorithm>
#include <atomic>

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

/// A film whose pictures show their number in white boxes on gray, with a tone.
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
                  u"color=gray:s=1280x720:r=30:d=30"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                  u"sine=frequency=440:sample_rate=48000:duration=30"_s, u"-vf"_s, boxes.join(u','),
                  u"-preset"_s, u"ultrafast"_s, u"-pix_fmt"_s, u"yuv420p"_s, path});
    return QFileInfo(path).size() > 0;
}

/// Where the film is in one row of a picture, between black: its first pixel and the one after its
/// last.
std::pair<qsizetype, qsizetype> extent(QByteArrayView row)
{
    constexpr uchar black = 64;
    const auto isFilm = [](char pixel) { return uchar(pixel) > black; };
    const auto first = std::ranges::find_if(row, isFilm);
    const auto last = std::find_if(row.rbegin(), row.rend(), isFilm).base();
    return {first - row.begin(), first < last ? last - row.begin() : first - row.begin()};
}

/// The middle row of each picture of a recording, in gray.
QByteArrayList middleRows(const QString &recording)
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
    QByteArrayList rows;
    if (!file.open(QIODevice::ReadOnly) || width * height == 0)
        return rows;
    while (true) {
        const QByteArray picture = file.read(width * height);
        if (picture.size() < width * height)
            return rows;
        rows.append(picture.mid(height / 2 * width, width));
    }
}

/// The numbers that the pictures of a recording of that film show.
QList<int> countedNumbers(const QString &recording)
{
    constexpr uchar white = 192;
    QList<int> numbers;
    const QByteArrayList rows = middleRows(recording);
    for (const QByteArray &row : rows) {
        const auto [begin, end] = extent(row);
        int number = 0;
        for (int bit = 0; bit < bits && begin < end; ++bit)
            number |= uchar(row[begin + (end - begin) * (2 * bit + 1) / (2 * bits)]) > white
                ? 1 << bit
                : 0;
        numbers.append(number);
    }
    return numbers;
}

QString listed(const QList<int> &numbers)
{
    QStringList texts;
    for (const int number : numbers)
        texts << QString::number(number);
    return texts.join(u' ');
}

/// The longest time that a picture of a recording stays, in seconds.
double longestStill(const QString &recording)
{
    const QStringList times = probe(recording, u"v"_s, u"packet=pts_time"_s).split(u'\n');
    double longest = 0;
    double last = 0;
    for (const QString &text : times) {
        const double time = QString(text).remove(u',').toDouble();
        longest = std::max(longest, time - std::exchange(last, time));
    }
    return longest;
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
    void staysOnThePicture_data();
    void staysOnThePicture();
    void followsTheDisplayMode();
    void followsToAnotherDisplay();
    void goesOnWhileHidden();
    void completesTheFileWhenQuitting_data();
    void completesTheFileWhenQuitting();
    void quitsWhileTheDiskStandsStill();

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
    std::atomic<int> shown = 0;
    const auto counting = connect(
        &m_world->window(), &QQuickWindow::frameSwapped, this, [&shown] { ++shown; },
        Qt::DirectConnection);
    const double recorded = recordFor(5s);
    disconnect(counting);
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
    // Hardly any picture that was shown is left out.
    const double possible = std::min(double(shown), recorded * 30);
    QVERIFY2(double(numbers.size()) > possible * 0.8 && numbers.size() <= recorded * 31 + 2,
             qPrintable(u"%1 of %2"_s.arg(numbers.size()).arg(possible)));
    QVERIFY2(std::ranges::is_sorted(numbers) && numbers.first() >= 60, qPrintable(listed(numbers)));
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

void AppRecordingTest::staysOnThePicture_data()
{
    QTest::addColumn<QSize>("before");
    QTest::addColumn<QSize>("after");
    QTest::addColumn<bool>("showsSidebar");
    QTest::newRow("smaller") << QSize(1200, 675) << QSize(640, 360) << false;
    QTest::newRow("larger") << QSize(640, 360) << QSize(1200, 675) << false;
    QTest::newRow("beside the sidebar") << QSize(1200, 675) << QSize(1200, 675) << true;
}

/// While the window changes, every picture is whole, and none is older than the one before.
void AppRecordingTest::staysOnThePicture()
{
    QFETCH(const QSize, before);
    QFETCH(const QSize, after);
    QFETCH(const bool, showsSidebar);
    m_world->shell().setSidebarVisible(false);
    m_world->window().resize(before);
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(3));
    QVERIFY(startWithKeyboard());
    for (int i = 0; i < 3; ++i) {
        QTest::qWait(500);
        m_world->window().resize(i % 2 == 0 ? after : before);
        m_world->shell().setSidebarVisible(i % 2 == 0 && showsSidebar);
    }
    QVERIFY(recordFor(500ms) > 0);
    const QList<int> numbers = countedNumbers(saved());
    QVERIFY(numbers.size() > 10);
    QVERIFY2(std::ranges::is_sorted(numbers) && numbers.first() >= 60
                 && numbers.last() - numbers.first() < 150,
             qPrintable(listed(numbers)));
}

void AppRecordingTest::followsTheDisplayMode()
{
    m_world->shell().setSidebarVisible(false);
    m_world->window().resize(1200, 675);
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(1));
    QVERIFY(startWithKeyboard());
    QTest::qWait(500);
    m_world->shell().setDisplayMode(PortraitDisplayMode::fill);
    QVERIFY(recordFor(1s) > 0);
    const QByteArrayList rows = middleRows(saved());
    QVERIFY(rows.size() > 2);
    QCOMPARE(extent(rows.first()), (std::pair<qsizetype, qsizetype>{0, 1200}));
    // The column, and nothing of what is beside it.
    const auto [begin, end] = extent(rows.last());
    QVERIFY2(std::abs(double(end - begin) - 675.0 * 9 / 16) < 5 && std::abs(begin + end - 1200) < 5,
             qPrintable(u"%1 to %2"_s.arg(begin).arg(end)));
}

void AppRecordingTest::followsToAnotherDisplay()
{
    const auto setMonitors = [](const QStringList &arguments) {
        ffmpegOutput(u"xrandr"_s, arguments);
    };
    setMonitors({u"--setmonitor"_s, u"left"_s, u"640/169x800/212+0+0"_s, u"screen"_s,
                 u"--setmonitor"_s, u"right"_s, u"640/169x800/212+640+0"_s, u"none"_s});
    QTRY_COMPARE(QGuiApplication::screens().size(), 2);
    m_world->shell().setSidebarVisible(false);
    m_world->window().setGeometry(20, 100, 600, 360);
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(3));
    QVERIFY(startWithKeyboard());
    QTest::qWait(700);
    m_world->window().setPosition(660, 200);
    QVERIFY(recordFor(1500ms) > 0);
    QCOMPARE(m_world->window().screen()->geometry().left(), 640);
    const QList<int> numbers = countedNumbers(saved());
    QVERIFY2(std::ranges::is_sorted(numbers) && numbers.size() > 20
                 && numbers.last() - numbers.first() > 45 && numbers.last() - numbers.first() < 100,
             qPrintable(listed(numbers)));
    setMonitors({u"--delmonitor"_s, u"right"_s, u"--delmonitor"_s, u"left"_s});
    QTRY_COMPARE(QGuiApplication::screens().size(), 1);
}

void AppRecordingTest::goesOnWhileHidden()
{
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(1));
    QVERIFY(startWithKeyboard());
    QTest::qWait(500);
    m_world->window().hide();
    const double recorded = recordFor(3s);
    const double duration = probe(saved(), u"v"_s, u"format=duration"_s).toDouble();
    QVERIFY2(std::abs(duration - recorded - 0.5) < 0.2,
             qPrintable(u"%1 s in %2 s"_s.arg(duration).arg(recorded)));
    // A file that is cut off misses little, hidden or not.
    QVERIFY2(longestStill(saved()) < 0.8, qPrintable(QString::number(longestStill(saved()))));
}

void AppRecordingTest::completesTheFileWhenQuitting_data()
{
    QTest::addColumn<bool>("stops");
    QTest::newRow("while recording") << false;
    QTest::newRow("while saving") << true;
}

void AppRecordingTest::completesTheFileWhenQuitting()
{
    QFETCH(const bool, stops);
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(1));
    QVERIFY(startWithKeyboard());
    QTest::qWait(2000);
    if (stops)
        m_world->recording().stop();
    m_world->restart();
    const QDir folder(m_world->folder());
    const QStringList files =
        folder.entryList({u"*Recording*"_s, u".*"_s}, QDir::Files | QDir::Hidden);
    QCOMPARE(files.size(), 1);
    const QString file = folder.filePath(files.first());
    const double duration = probe(file, u"v"_s, u"format=duration"_s).toDouble();
    QVERIFY2(duration > 1.5, qPrintable(QString::number(duration)));
    QCOMPARE(ffmpegOutput(u"ffmpeg"_s,
                          {u"-v"_s, u"error"_s, u"-i"_s, file, u"-vsync"_s, u"drop"_s, u"-f"_s,
                           u"null"_s, u"-"_s}),
             QString());
}

void AppRecordingTest::quitsWhileTheDiskStandsStill()
{
    m_world->open(m_film);
    QVERIFY(m_world->playsTo(1));
    QVERIFY(startWithKeyboard());
    const QStringList files =
        QDir(m_world->folder()).entryList({u"*Recording*"_s}, QDir::Files | QDir::Hidden);
    QCOMPARE(files.size(), 1);
    const StandingDisk disk(m_world->folder() + u'/' + files.first());
    QVERIFY(disk.isInPlace());
    // Until more is to be written than a pipe holds, and all pictures wait for that.
    QTest::qWait(4000);
    m_world.reset();
    // Nothing reads what went with the window when the disk goes on.
}

LUMARO_APP_TEST_MAIN(AppRecordingTest)
#include "tst_app_recording.moc"
