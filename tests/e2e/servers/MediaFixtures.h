#pragma once

#include <QString>

#include <expected>

namespace lumaro {

enum class Fixture {
    Movie, ///< MP4, 60 s of a moving test picture, 1280x720 at 30 frames a second, and a tone
    SolidColor, ///< MP4, 10 s of nothing but MediaFixtures::solidColor, 1280x720
    Matroska, ///< MKV, 10 s of a moving test picture and a tone
    AudioOnly, ///< M4A, 10 s of a tone
    AudioWithCover, ///< the same with a cover of 300x300
    TruncatedMovie, ///< the first half of Movie: plays until the data ends
    TruncatedIndex, ///< so little of Movie that its index is incomplete: nothing plays
    RandomBytes, ///< named MP4, but noise
    Hls, ///< multivariant playlist of a finished stream, 20 s in MPEG-TS segments of 2 s
    FragmentedHls, ///< the same with fragmented MP4 segments
    LargeHls, ///< media playlist of a finished stream, 200 MPEG-TS segments of 1 s and about 2 MB
    Turned, ///< MP4, 10 s, 640x360, to be turned by a quarter, as telephones write it
    Gradient, ///< MP4, 60 s of a still picture, 1280x720: red grows to the right, green downwards
    MovingFace, ///< MP4, 40 s, 1280x720: a face goes from left to right in 16 s, then rests; the
                ///< grey behind it grows lighter to the right
    FullHdMovie, ///< as Movie, but 1920x1080 and 75 s
    CountedMovie, ///< as FullHdMovie, but 30 s, with a square in the middle that is red, green and
                  ///< blue by turns
    SmallMovie, ///< MP4, 60 s of a moving test picture, 320x180 at 30 frames a second, and a tone
    SmallClip, ///< the first 10 s of that
    LongMovie, ///< MP4, 15 minutes of a moving test picture, 320x180 at 5 frames a second
};

/// Test media, made with ffmpeg when first asked for and then kept. The same recipe gives the same
/// bytes; a changed recipe gives a new file. Several processes may share a folder.
class MediaFixtures
{
public:
    /// RGB of Fixture::SolidColor's picture.
    static constexpr unsigned solidColor = 0x2060c0;

    /// `cacheFolder` is made when missing.
    explicit MediaFixtures(const QString &cacheFolder);

    /// The file's absolute path; the stream's other files lie beside and below it. May block for
    /// seconds. The error is an English sentence with what ffmpeg said.
    std::expected<QString, QString> path(Fixture fixture) const;

private:
    QString m_cacheFolder;
};

} // namespace lumaro
