#include "tests/e2e/servers/MediaFixtures.h"

#include "tests/e2e/servers/ChildProcess.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <optional>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

using Result = std::expected<void, QString>;

/// How a fixture is made in an empty folder: by ffmpeg, or from the head of another fixture, or
/// neither for noise.
struct Recipe
{
    QString file;
    QStringList ffmpeg;
    qint64 movieBytes = 0; ///< -1 for half of it
    std::optional<Fixture> input{}; ///< ffmpeg's, before its arguments
};

constexpr qsizetype noiseSize = 1 << 20;

QStringList words(const QString &text)
{
    return text.split(u' ', Qt::SkipEmptyParts);
}

/// Turning the hue makes every place of the picture change with every frame.
QString testPicture(const QString &size, int seconds)
{
    return u"-f lavfi -i testsrc2=size=%1:rate=30,hue=h=180*t -f lavfi -i "
           u"sine=frequency=440:sample_rate=48000 "
           "-t %2 "_s.arg(size, QString::number(seconds));
}

/// Cheap to make, and the same bytes each time: the number of threads shapes what x264 writes.
const QString encoding = u"-c:v libx264 -preset ultrafast -pix_fmt yuv420p -g 60 -keyint_min 60 "
                         "-sc_threshold 0 -threads 2 -c:a aac -b:a 64k -flags +bitexact "
                         "-fflags +bitexact "_s;

// The index in front, as files for the network have it.
const QString mp4 = u"-movflags +faststart "_s;

QStringList hls(const QString &segments)
{
    return words(testPicture(u"640x360"_s, 20)
                 + u"-filter_complex [0:v]split[high][scaled];[scaled]scale=320:180[low] "
                   "-map [high] -map 1:a -map [low] -map 1:a "_s
                 + encoding
                 + u"-b:v:0 500k -b:v:1 150k -f hls -hls_time 2 -hls_playlist_type vod "
                   "-hls_flags independent_segments -master_pl_name master.m3u8 "_s
                 + segments + u" -var_stream_map"_s)
        + QStringList{u"v:0,a:0,name:high v:1,a:1,name:low"_s, u"%v/index.m3u8"_s};
}

/// As players take it for this size.
const QString bt709 =
    u"-colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv "_s;

/// A photograph from the package opencv-doc.
const QString facePhoto = u"/usr/share/doc/opencv-doc/opencv4/html/face_swapped.jpg"_s;

Recipe recipeFor(Fixture fixture)
{
    switch (fixture) {
    case Fixture::Movie:
        return {u"movie.mp4"_s,
                words(testPicture(u"1280x720"_s, 60) + encoding + u"-b:v 1600k "_s + mp4
                      + u"movie.mp4"_s)};
    case Fixture::FullHdMovie:
        return {u"fullhd.mp4"_s,
                words(testPicture(u"1920x1080"_s, 75) + encoding + u"-b:v 3000k "_s + mp4
                      + u"fullhd.mp4"_s)};
    case Fixture::CountedMovie: {
        QStringList squares;
        for (const QString &color : {u"red"_s, u"green"_s, u"blue"_s})
            squares.append(
                u"drawbox=x=iw/2-240:y=ih/2-240:w=480:h=480:t=fill:color=%1:enable=eq(mod(n\\,3)\\,%2)"_s
                    .arg(color, QString::number(squares.size())));
        return {u"counted.mp4"_s,
                words(testPicture(u"1920x1080"_s, 30) + u"-vf "_s + squares.join(u',') + u' '
                      + encoding + u"-b:v 3000k "_s + mp4 + u"counted.mp4"_s)};
    }
    case Fixture::SmallMovie:
        return {u"small.mp4"_s,
                words(testPicture(u"320x180"_s, 60) + encoding + mp4 + u"small.mp4"_s)};
    case Fixture::SmallClip:
        return {u"clip.mp4"_s,
                words(testPicture(u"320x180"_s, 10) + encoding + mp4 + u"clip.mp4"_s)};
    case Fixture::LongMovie:
        return {u"long.mp4"_s,
                words(u"-f lavfi -i testsrc2=size=320x180:rate=5 -t 900 -c:v libx264 -preset "
                      "ultrafast -g 25 -threads 2 -flags +bitexact -fflags +bitexact "_s
                      + mp4 + u"long.mp4"_s)};
    case Fixture::Turned:
        // ffmpeg tells of a turn only where it does not encode.
        return {.file = u"turned.mp4"_s,
                .ffmpeg = words(u"-c copy -metadata:s:v rotate=90 turned.mp4"_s),
                .input = Fixture::Matroska};
    case Fixture::Gradient:
        return {u"gradient.mp4"_s,
                words(u"-f lavfi -i color=size=1280x720:rate=10 -t 60 -vf "
                      "format=gbrp,geq=r='X*255/W':g='Y*255/H':b=64:enable='lt(n,1)',"
                      "select='eq(n,0)',loop=600:1,setpts=N/10/TB,"
                      "scale=out_color_matrix=bt709:out_range=tv,format=yuv444p "_s
                      + bt709
                      + u"-c:v libx264 -preset ultrafast -crf 6 -threads 2 -flags +bitexact "
                        "-fflags +bitexact gradient.mp4"_s)};
    case Fixture::MovingFace:
        return {u"face.mp4"_s,
                words(u"-f lavfi -i color=size=1280x720:rate=30 -loop 1 -framerate 30 -i "_s
                      + facePhoto
                      + u" -filter_complex "
                        "[0]format=yuv420p,select='eq(n,0)',geq=lum='16+X*219/W':cb=128:cr=128,"
                        "loop=1200:1,setpts=N/30/TB[behind];[1]scale=-2:400,format=yuv420p[face];"
                        "[behind][face]overlay=x='(W-w)*min(t/16,1)':y=250 -t 40 "_s
                      + bt709
                      + u"-c:v libx264 -preset ultrafast -crf 14 -threads 2 -flags +bitexact "
                        "-fflags +bitexact face.mp4"_s)};
    case Fixture::SolidColor:
        // Players take the BT.709 matrix for this size, so that is what the file must be in.
        return {u"solid.mp4"_s,
                words(u"-f lavfi -i color=c=0x%1:size=1280x720:rate=30 -f lavfi -i "
                      "sine=frequency=440:sample_rate=48000 -t 10 -vf "
                      "scale=out_color_matrix=bt709:out_range=tv -colorspace bt709 "
                      "-color_primaries bt709 -color_trc bt709 -color_range tv "_s.arg(
                          MediaFixtures::solidColor, 6, 16, QChar(u'0'))
                      + encoding + mp4 + u"solid.mp4"_s)};
    case Fixture::Matroska:
        return {u"picture.mkv"_s,
                words(testPicture(u"640x360"_s, 10) + encoding + u"-b:v 500k picture.mkv"_s)};
    case Fixture::AudioOnly:
        return {u"tone.m4a"_s,
                words(u"-f lavfi -i sine=frequency=440:sample_rate=48000 -t 10 -c:a aac -b:a 64k "
                      "-flags +bitexact -fflags +bitexact tone.m4a"_s)};
    case Fixture::AudioWithCover:
        return {.file = u"cover.m4a"_s,
                .ffmpeg = words(
                    u"-f lavfi -i testsrc2=size=300x300:rate=1:duration=1 -map 0:a -map 1:v -c:a "
                    "copy -c:v mjpeg -frames:v 1 -disposition:v attached_pic -flags "
                    "+bitexact -fflags +bitexact cover.m4a"_s),
                .input = Fixture::AudioOnly};
    case Fixture::TruncatedMovie:
        return {u"truncated.mp4"_s, {}, -1};
    case Fixture::TruncatedIndex:
        return {u"noindex.mp4"_s, {}, 4096};
    case Fixture::RandomBytes:
        return {u"noise.mp4"_s, {}};
    case Fixture::Hls:
        return {u"master.m3u8"_s,
                hls(u"-hls_segment_type mpegts -hls_segment_filename %v/segment%03d.ts"_s)};
    case Fixture::FragmentedHls:
        return {u"master.m3u8"_s,
                hls(u"-hls_segment_type fmp4 -hls_fmp4_init_filename init.mp4 "
                    "-hls_segment_filename %v/segment%03d.m4s"_s)};
    case Fixture::LargeHls:
        // As many pictures to a byte as streams have; filler makes the bytes, so that it is quickly
        // made.
        return {
            u"index.m3u8"_s,
            words(testPicture(u"320x180"_s, 1200) + encoding
                  + u"-g 180 -keyint_min 180 -b:v 2500k -minrate 2500k -maxrate 2500k -bufsize "
                    "2500k -x264-params nal-hrd=cbr:filler=1 -f hls -hls_time 6 "
                    "-hls_playlist_type vod -hls_segment_filename segment%03d.ts index.m3u8"_s)};
    }
    Q_UNREACHABLE();
}

/// Differs for each recipe, so that an old result is never taken for a new one.
QString folderName(const Recipe &recipe)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(recipe.ffmpeg.join(u' ').toUtf8());
    hash.addData(QByteArray::number(recipe.movieBytes));
    return QFileInfo(recipe.file).completeBaseName() + u'-'
        + QString::fromLatin1(hash.result().toHex().first(10));
}

Result runFfmpeg(const QStringList &arguments, const QString &folder)
{
    // Beside the folder, which is to hold the result only.
    const QString log = folder + u".log"_s;
    ChildProcess ffmpeg;
    const auto started =
        ffmpeg.start(u"ffmpeg"_s, words(u"-nostdin -hide_banner -loglevel error"_s) + arguments,
                     {.workingFolder = folder, .logFile = log});
    if (!started)
        return started;
    const bool finished = ffmpeg.waitForFinished(3min);
    if (finished && ffmpeg.exitCode() == 0)
        return {};
    QFile said(log);
    const QString output =
        said.open(QIODevice::ReadOnly) ? QString::fromUtf8(said.readAll()) : QString();
    return std::unexpected(
        QString((finished ? u"ffmpeg failed: "_s : u"ffmpeg took too long: "_s) + output));
}

Result write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        return std::unexpected(QString(path + u": "_s + file.errorString()));
    return {};
}

QByteArray noise()
{
    QRandomGenerator generator(1);
    QByteArray bytes;
    bytes.reserve(noiseSize);
    while (bytes.size() < noiseSize)
        bytes.append(char(generator.generate() & 0xff));
    return bytes;
}

Result make(const Recipe &recipe, const MediaFixtures &others, const QString &folder)
{
    if (recipe.input) {
        const auto input = others.path(*recipe.input);
        if (!input)
            return std::unexpected(input.error());
        return runFfmpeg(QStringList{u"-i"_s, *input} + recipe.ffmpeg, folder);
    }
    if (!recipe.ffmpeg.isEmpty())
        return runFfmpeg(recipe.ffmpeg, folder);
    const QString path = folder + u'/' + recipe.file;
    if (recipe.movieBytes == 0)
        return write(path, noise());

    const auto moviePath = others.path(Fixture::Movie);
    if (!moviePath)
        return std::unexpected(moviePath.error());
    QFile movie(*moviePath);
    if (!movie.open(QIODevice::ReadOnly))
        return std::unexpected(QString(*moviePath + u": "_s + movie.errorString()));
    return write(path, movie.read(recipe.movieBytes < 0 ? movie.size() / 2 : recipe.movieBytes));
}

} // namespace

MediaFixtures::MediaFixtures(const QString &cacheFolder)
    : m_cacheFolder(QDir(cacheFolder).absolutePath())
{
}

std::expected<QString, QString> MediaFixtures::path(Fixture fixture) const
{
    const Recipe recipe = recipeFor(fixture);
    const QString folder = m_cacheFolder + u'/' + folderName(recipe);
    QString file = folder + u'/' + recipe.file;
    if (QFileInfo::exists(file))
        return file;

    // One process makes it, the others wait for it.
    if (!QDir().mkpath(m_cacheFolder))
        return std::unexpected(QString(m_cacheFolder + u" cannot be made."_s));
    QLockFile lock(folder + u".lock"_s);
    lock.setStaleLockTime(0);
    if (!lock.tryLock(int(std::chrono::milliseconds(4min).count())))
        return std::unexpected(QString(folder + u" stayed locked."_s));
    if (QFileInfo::exists(file))
        return file;

    const QTemporaryDir workshop(folder + u"-XXXXXX"_s);
    if (!workshop.isValid())
        return std::unexpected(workshop.errorString());
    const QString made = workshop.filePath(u"made"_s);
    if (!QDir().mkdir(made))
        return std::unexpected(QString(made + u" cannot be made."_s));
    if (const Result result = make(recipe, *this, made); !result)
        return std::unexpected(result.error());
    if (!QFileInfo::exists(made + u'/' + recipe.file) || !QDir().rename(made, folder))
        return std::unexpected(QString(folder + u" cannot be kept."_s));
    return file;
}

} // namespace lumaro
