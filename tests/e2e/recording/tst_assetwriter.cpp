#include "platform/ffmpeg/FfmpegAssetWriter.h"
#include "recording/PlayerCaptureWriter.h"
#include "tests/e2e/download/MountedFolder.h"
#include "tests/e2e/servers/ChildProcess.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <csignal>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

constexpr QSize size(320, 180);
constexpr int rate = 48'000;

VideoSample noise(MediaTime time)
{
    const auto pixels = std::make_shared<std::vector<uchar>>(size.width() * size.height() * 4);
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32 *>(pixels->data()),
                                          qsizetype(pixels->size() / 4));
    return {.presentationTime = time,
            .size = size,
            .topRow = pixels->data(),
            .bytesPerLine = qsizetype(size.width()) * 4,
            .owner = pixels};
}

/// A hundredth of a second of a tone, or of silence.
AudioSample sound(MediaTime time, bool loud = true)
{
    AudioSample sample{.presentationTime = time, .channels = 2, .data = std::vector<float>(960)};
    for (size_t i = 0; loud && i < sample.data.size(); ++i)
        sample.data[i] = i / 2 % 96 < 48 ? 0.3F : -0.3F;
    return sample;
}

QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(120'000);
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError())
        .trimmed();
}

QString probe(const QString &file, const QString &what, const QString &stream = {})
{
    QStringList arguments{u"-v"_s, u"error"_s, u"-show_entries"_s,
                          what,    u"-of"_s,   u"csv=p=0:nk=1"_s};
    if (!stream.isEmpty())
        arguments << u"-select_streams"_s << stream;
    return run(u"ffprobe"_s, arguments << file);
}

/// What ffmpeg complains of when it decodes all of the file.
QString complaints(const QString &file)
{
    return run(
        u"ffmpeg"_s,
        {u"-v"_s, u"error"_s, u"-i"_s, file, u"-vsync"_s, u"drop"_s, u"-f"_s, u"null"_s, u"-"_s});
}

std::unique_ptr<PlayerCaptureWriter> makeWriter(const QString &file)
{
    auto writer =
        PlayerCaptureWriter::create(&FfmpegAssetWriter::create, QUrl::fromLocalFile(file), size);
    if (!writer)
        qFatal("%s", qPrintable(writer.error()));
    return std::move(*writer);
}

PlayerCaptureWriter::Outcome finish(PlayerCaptureWriter &writer)
{
    PlayerCaptureWriter::Outcome outcome;
    writer.finish([&](const auto &result) { outcome = result; });
    return outcome;
}

/// The order of the boxes at the file's top level.
QStringList boxes(const QString &path)
{
    QFile file(path);
    QStringList names;
    if (!file.open(QIODevice::ReadOnly))
        return names;
    while (file.size() - file.pos() >= 16) {
        const qint64 begin = file.pos();
        const QByteArray head = file.read(16);
        quint64 length = qFromBigEndian<quint32>(head.constData());
        if (length == 1)
            length = qFromBigEndian<quint64>(head.constData() + 8);
        names.append(QString::fromLatin1(head.mid(4, 4)));
        if (length < 8 || !file.seek(begin + qint64(length)))
            break;
    }
    return names;
}

/// Records in real time until the process is killed, and writes down when the first picture came.
int recordForEver(const QString &path, std::chrono::milliseconds interval, bool withSound)
{
    const auto writer = makeWriter(path);
    QFile begin(path + u".begin");
    const MediaTime first = mediaTimeNow();
    if (!begin.open(QIODevice::WriteOnly) || !begin.write(QByteArray::number(first.count()))
        || !begin.flush())
        return 1;
    for (MediaTime time = first; true; time += interval) {
        std::this_thread::sleep_until(std::chrono::steady_clock::time_point(time));
        writer->append(noise(time));
        for (auto i = 0ms; withSound && i < interval; i += 10ms)
            writer->append(sound(time + i));
    }
}

/// When that was.
MediaTime beginning(const QString &path)
{
    QFile file(path + u".begin");
    return MediaTime(file.open(QIODevice::ReadOnly) ? file.readAll().toLongLong() : 0);
}

} // namespace

class AssetWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesAnOrdinaryFile();
    void leavesOutSilentTracks();
    void keepsTimes_data();
    void keepsTimes();
    void followsTheSoundsClock_data();
    void followsTheSoundsClock();
    void survivesAKill_data();
    void survivesAKill();
    void hurries();
    void removesAbandonedCopies();
    void noticesThatTheFileIsGone();
    void fillsHoles_data();
    void fillsHoles();
    void aLongHoleTakesNoMemory();
    void survivesAFullDisk();
    void copiesNothingWhereThereIsLittleRoom();
    void staysInItsFolder();
    void cutsOffOnlyItsOwnFile();
    void saysWhyItCannotBegin_data();
    void saysWhyItCannotBegin();
    void writesTheSmallestSize();
};

void AssetWriterTest::writesAnOrdinaryFile()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"ä #1.mp4"_s);
    const auto writer = makeWriter(file);
    for (int i = 0; i < 90; ++i) {
        const MediaTime time = 1h + i * MediaTime(1s) / 30;
        writer->append(noise(time));
        for (int j = 0; j < 3; ++j)
            writer->append(sound(time + j * 10ms));
    }
    QVERIFY(finish(*writer));
    QCOMPARE(boxes(file).value(0), u"ftyp"_s);
    QCOMPARE(boxes(file).value(1), u"moov"_s);
    QVERIFY(!boxes(file).contains(u"moof"_s));
    QCOMPARE(probe(file, u"stream=codec_name,profile,width,height,avg_frame_rate"_s, u"v"_s),
             u"h264,High,320,180,30/1"_s);
    QCOMPARE(probe(file, u"stream=codec_name,sample_rate,channels"_s, u"a"_s), u"aac,48000,2"_s);
    QCOMPARE(probe(file, u"stream=start_time"_s, u"v"_s), u"0.000000"_s);
    QVERIFY(std::abs(probe(file, u"format=duration"_s).toDouble() - 3.0) < 0.05);
    QCOMPARE(complaints(file), QString());
    // Nothing is left beside it.
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void AssetWriterTest::leavesOutSilentTracks()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    const auto writer = makeWriter(file);
    for (int i = 0; i < 30; ++i)
        writer->append(noise(i * MediaTime(1s) / 30));
    QVERIFY(finish(*writer));
    QCOMPARE(probe(file, u"stream=codec_type"_s), u"video"_s);
    QCOMPARE(complaints(file), QString());
}

void AssetWriterTest::keepsTimes_data()
{
    QTest::addColumn<bool>("withSound");
    QTest::addColumn<bool>("hurries");
    QTest::newRow("pictures alone") << false << false;
    QTest::newRow("with sound") << true << false;
    QTest::newRow("in fragments") << false << true;
    QTest::newRow("in fragments, with sound") << true << true;
}

void AssetWriterTest::keepsTimes()
{
    QFETCH(const bool, withSound);
    QFETCH(const bool, hurries);
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    const auto writer = makeWriter(file);
    MediaTime heard = 5s;
    for (const MediaTime time :
         {MediaTime(5s), MediaTime(5s + 40ms), MediaTime(5s + 40ms), MediaTime(7s),
          MediaTime(7s + 450ms), MediaTime(7s + 900ms), MediaTime(8s + 400ms)}) {
        for (; withSound && heard < time; heard += 10ms)
            writer->append(sound(heard));
        writer->append(noise(time));
    }
    if (hurries)
        writer->hurry();
    QVERIFY(finish(*writer));
    QCOMPARE(probe(file, u"packet=pts_time"_s, u"v"_s).split(u'\n'),
             (QStringList{u"0.000000"_s, u"0.040000"_s, u"2.000000"_s, u"2.450000"_s, u"2.900000"_s,
                          u"3.400000"_s}));
}

void AssetWriterTest::followsTheSoundsClock_data()
{
    QTest::addColumn<double>("speed");
    QTest::newRow("exact") << 1.0;
    QTest::newRow("200 ppm slow") << 0.9998;
    QTest::newRow("200 ppm fast") << 1.0002;
}

/// After ten minutes a tone is still where its time says.
void AssetWriterTest::followsTheSoundsClock()
{
    QFETCH(const double, speed);
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    const auto writer = makeWriter(file);
    constexpr auto toneBegin = 595s;
    writer->append(noise(0s));
    for (int i = 0; i < 60'000; ++i) {
        const auto time = MediaTime(qint64(i * 1e7 * speed));
        writer->append(sound(time, time >= toneBegin));
        if (i % 6000 == 0)
            writer->append(noise(time + 1ms));
    }
    QVERIFY(finish(*writer));
    const QString found = run(u"ffmpeg"_s,
                              {u"-i"_s, file, u"-af"_s, u"silencedetect=noise=-40dB:d=10"_s,
                               u"-vn"_s, u"-f"_s, u"null"_s, u"-"_s});
    static const QRegularExpression end(u"silence_end: ([0-9.]+)"_s);
    const double begin = end.match(found).captured(1).toDouble();
    QVERIFY2(std::abs(begin - 595.0) < 0.04, qPrintable(QString::number(begin)));
}

void AssetWriterTest::survivesAKill_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QString>("kind");
    QTest::newRow("with sound") << 40 << u"--with-sound"_s;
    QTest::newRow("without") << 40 << u"--without-sound"_s;
    QTest::newRow("two pictures a second") << 500 << u"--without-sound"_s;
}

void AssetWriterTest::survivesAKill()
{
    QFETCH(const int, interval);
    QFETCH(const QString, kind);
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    ChildProcess recorder;
    QVERIFY(recorder.start(QCoreApplication::applicationFilePath(),
                           {kind, QString::number(interval), file}, {}));
    QTRY_VERIFY(beginning(file) > 0s);
    // Just before the next picture most is at stake.
    std::this_thread::sleep_until(
        std::chrono::steady_clock::time_point(beginning(file) + 5s + interval * 900us));
    recorder.sendSignal(SIGKILL);
    const double recorded = std::chrono::duration<double>(mediaTimeNow() - beginning(file)).count();
    QVERIFY(recorder.waitForFinished(5s));
    const double lasts = run(u"ffprobe"_s,
                             {u"-v"_s, u"error"_s, u"-select_streams"_s, u"v"_s, u"-show_entries"_s,
                              u"packet=pts_time"_s, u"-of"_s, u"csv=p=0"_s, file})
                             .split(u'\n')
                             .last()
                             .remove(u',')
                             .toDouble();
    QVERIFY2(lasts > recorded - 2, qPrintable(QString::number(lasts)));
    QCOMPARE(complaints(file), QString());
}

void AssetWriterTest::hurries()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    const auto writer = makeWriter(file);
    for (int i = 0; i < 60; ++i)
        writer->append(noise(i * MediaTime(1s) / 30));
    writer->hurry();
    QVERIFY(finish(*writer));
    QVERIFY(boxes(file).contains(u"moof"_s));
    QVERIFY(std::abs(probe(file, u"format=duration"_s).toDouble() - 2.0) < 0.05);
    QCOMPARE(complaints(file), QString());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"a.mp4"_s});
}

void AssetWriterTest::removesAbandonedCopies()
{
    const QTemporaryDir folder;
    const auto leave = [&](const QString &name, int days) {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::WriteOnly)
            && file.setFileTime(QDateTime::currentDateTime().addDays(-days),
                                QFileDevice::FileModificationTime);
    };
    QVERIFY(leave(u".old.mp4.lumaro-part"_s, 2));
    QVERIFY(leave(u".under way.mp4.lumaro-part"_s, 0));
    QVERIFY(leave(u".another's.mp4.part"_s, 2));
    QVERIFY(leave(u"seen.lumaro-part"_s, 2));
    const auto writer = makeWriter(folder.filePath(u"a.mp4"_s));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
             (QStringList{u".another's.mp4.part"_s, u".under way.mp4.lumaro-part"_s, u"a.mp4"_s,
                          u"seen.lumaro-part"_s}));
}

void AssetWriterTest::noticesThatTheFileIsGone()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    const auto writer = makeWriter(file);
    writer->append(noise(0s));
    QVERIFY(QFile::remove(file));
    const auto outcome = finish(*writer);
    QVERIFY(!outcome);
    QCOMPARE(outcome.error(), u"The recording could not be written: No such file or directory."_s);
}

void AssetWriterTest::fillsHoles_data()
{
    QTest::addColumn<int>("hole");
    QTest::addColumn<double>("begin");
    QTest::newRow("lost sound") << 60 << 2.06;
    QTest::newRow("an imprecise time") << 30 << 2.0;
}

/// Sound that comes `hole` milliseconds late: a tone after it begins where its time says, unless
/// nothing is missing.
void AssetWriterTest::fillsHoles()
{
    QFETCH(const int, hole);
    QFETCH(const double, begin);
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    const auto writer = makeWriter(file);
    writer->append(noise(0s));
    for (int i = 0; i < 300; ++i)
        writer->append(sound(i * 10ms + (i < 200 ? 0 : hole) * 1ms, i >= 200));
    QVERIFY(finish(*writer));
    const QString found = run(u"ffmpeg"_s,
                              {u"-i"_s, file, u"-af"_s, u"silencedetect=noise=-40dB:d=1"_s,
                               u"-vn"_s, u"-f"_s, u"null"_s, u"-"_s});
    static const QRegularExpression end(u"silence_end: ([0-9.]+)"_s);
    const double heard = end.match(found).captured(1).toDouble();
    QVERIFY2(std::abs(heard - begin) < 0.015, qPrintable(QString::number(heard)));
}

void AssetWriterTest::aLongHoleTakesNoMemory()
{
    const auto mostMemory = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss / 1024;
    };
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    const auto writer = makeWriter(file);
    writer->append(noise(0s));
    writer->append(sound(0s));
    const long before = mostMemory();
    // As samples 700 MB.
    constexpr auto hole = 30min;
    writer->append(sound(hole));
    writer->append(noise(hole));
    QVERIFY2(mostMemory() - before < 350, qPrintable(QString::number(mostMemory() - before)));
    QVERIFY(finish(*writer));
    QVERIFY(std::abs(probe(file, u"stream=duration"_s, u"a"_s).toDouble() - 1800.0) < 0.1);
}

void AssetWriterTest::survivesAFullDisk()
{
    const MountedFolder disk(MountedFolder::Kind::Small);
    if (!disk.isMounted())
        QSKIP("Mounting needs privileges.");
    const QString file = disk.path() + u"/a.mp4";
    const auto writer = makeWriter(file);
    int pictures = 0;
    while (!writer->hasFailed() && pictures < 3000)
        writer->append(noise(++pictures * MediaTime(1s) / 30));
    QVERIFY(writer->hasFailed());
    const auto outcome = finish(*writer);
    QVERIFY(!outcome);
    QVERIFY(outcome.error().startsWith(u"The disk is full."));
    QVERIFY(probe(file, u"format=duration"_s).toDouble() > 0.5);
    QCOMPARE(complaints(file), QString());
}

/// A copy that fails for want of room would fill the disk before it does.
void AssetWriterTest::copiesNothingWhereThereIsLittleRoom()
{
    const MountedFolder disk(MountedFolder::Kind::Small);
    if (!disk.isMounted())
        QSKIP("Mounting needs privileges.");
    const QString file = disk.path() + u"/a.mp4";
    const auto writer = makeWriter(file);
    for (int i = 0; i < 3; ++i)
        writer->append(noise(i * MediaTime(1s) / 30));
    QVERIFY(finish(*writer));
    // A copy would fit, but then nothing else would.
    QVERIFY(QFileInfo(file).size() < 400'000);
    QVERIFY(boxes(file).contains(u"moof"_s));
    QCOMPARE(complaints(file), QString());
    QCOMPARE(QDir(disk.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"a.mp4"_s});
}

/// Others may put links into a shared folder, by names that they can guess.
void AssetWriterTest::staysInItsFolder()
{
    const QTemporaryDir folder;
    const QTemporaryDir elsewhere;
    QFile precious(elsewhere.filePath(u"precious"_s));
    QVERIFY(precious.open(QIODevice::WriteOnly) && precious.write("own") == 3);
    precious.close();
    const QString file = folder.filePath(u"a.mp4"_s);
    QVERIFY(precious.link(file));
    const auto writer = makeWriter(file);
    for (int i = 0; i < 30; ++i)
        writer->append(noise(i * MediaTime(1s) / 30));
    QVERIFY(precious.link(folder.filePath(u".a.mp4.lumaro-part"_s)));
    QVERIFY(finish(*writer));
    QVERIFY(precious.open(QIODevice::ReadOnly));
    QCOMPARE(precious.readAll(), "own"_ba);
    QVERIFY(!boxes(file).contains(u"moof"_s));
    QVERIFY(!QFileInfo(file).isSymLink());
    QCOMPARE(complaints(file), QString());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"a.mp4"_s});
}

/// The disk becomes full when the file has another name, and its name is another's.
void AssetWriterTest::cutsOffOnlyItsOwnFile()
{
    const MountedFolder disk(MountedFolder::Kind::Small);
    if (!disk.isMounted())
        QSKIP("Mounting needs privileges.");
    const QString file = disk.path() + u"/a.mp4";
    const auto writer = makeWriter(file);
    writer->append(noise(0s));
    QVERIFY(QFile::rename(file, disk.path() + u"/b.mp4"));
    QFile other(file);
    const QByteArray content(100'000, 'x');
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write(content) == content.size());
    other.close();
    for (int i = 1; i < 3000 && !writer->hasFailed(); ++i)
        writer->append(noise(i * MediaTime(1s) / 30));
    QVERIFY(writer->hasFailed());
    QVERIFY(other.open(QIODevice::ReadOnly));
    QCOMPARE(other.readAll(), content);
    QCOMPARE(complaints(disk.path() + u"/b.mp4"), QString());
}

void AssetWriterTest::saysWhyItCannotBegin_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("error");
    QTest::newRow("no folder")
        << false << u"The recording could not be written: No such file or directory."_s;
    QTest::newRow("a protected folder")
        << true
        << u"The recording could not be written: this folder is protected. Choose another one."_s;
}

void AssetWriterTest::saysWhyItCannotBegin()
{
    QFETCH(const bool, exists);
    QFETCH(const QString, error);
    const QTemporaryDir folder;
    QVERIFY(QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner));
    // Root may write everywhere.
    constexpr uid_t nobody = 65'534;
    const bool isRoot = geteuid() == 0;
    QVERIFY(!isRoot || seteuid(nobody) == 0);
    const auto writer = PlayerCaptureWriter::create(
        &FfmpegAssetWriter::create,
        QUrl::fromLocalFile((exists ? folder.path() : u"/nowhere"_s) + u"/a.mp4"), size);
    QVERIFY(!isRoot || seteuid(0) == 0);
    QVERIFY(QFile::setPermissions(folder.path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(!writer);
    QCOMPARE(writer.error(), error);
}

void AssetWriterTest::writesTheSmallestSize()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a.mp4"_s);
    auto writer = PlayerCaptureWriter::create(&FfmpegAssetWriter::create, QUrl::fromLocalFile(file),
                                              {16, 16});
    QVERIFY(writer);
    (*writer)->append(noise(0s));
    (*writer)->append(noise(1s));
    QVERIFY(finish(**writer));
    QCOMPARE(probe(file, u"stream=width,height"_s, u"v"_s), u"16,16"_s);
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments[1].startsWith(u"--with"))
        return recordForEver(arguments[3], std::chrono::milliseconds(arguments[2].toInt()),
                             arguments[1] == u"--with-sound");
    AssetWriterTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_assetwriter.moc"
