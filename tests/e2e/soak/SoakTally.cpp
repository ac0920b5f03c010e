#include "tests/e2e/soak/SoakTally.h"

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

const QString filmPlays = u"film plays"_s;
const QString liveStreamPlays = u"live stream plays"_s;
const QString sitePlays = u"site's video plays"_s;
const QString nothingToPlay = u"nothing to play"_s;
const QString listLoads = u"list loads"_s;
const QString listFails = u"list or address fails"_s;
const QString downloadIsSaved = u"download is saved"_s;
const QString downloadFails = u"download fails"_s;
const QString recordingIsSaved = u"recording is saved"_s;
const QString streamIsFound = u"stream is found"_s;
const QString libraryChanges = u"library changes"_s;

} // namespace

SoakTally::SoakTally(AppWorld &app)
{
    for (const QString &what :
         {filmPlays, liveStreamPlays, sitePlays, nothingToPlay, listLoads, listFails,
          downloadIsSaved, downloadFails, recordingIsSaved, streamIsFound, libraryChanges})
        m_counts.insert(what, 0);
    PlayerModel &player = app.player();
    connect(&player, &PlayerModel::currentTimeChanged, this, [&] { countPlayback(player); });
    connect(&player, &PlayerModel::errorMessageChanged, this, [&] {
        if (!player.errorMessage().isEmpty())
            count(listFails);
    });
    connect(&app.shell(), &MainWindowModel::pictureNoticeChanged, this, [&] {
        if (!app.shell().pictureNotice().isEmpty())
            count(nothingToPlay);
    });
    connect(&app.channels(), &ChannelListModel::countChanged, this, [&] {
        if (app.channels().count() > 0)
            count(listLoads);
    });
    M3U8DownloadManager &downloads = *app.downloads().manager();
    connect(&downloads, &M3U8DownloadManager::jobChanged, this,
            [&](const QString &key) { countJob(downloads.jobs().value(key)); });
    connect(app.recording().controller(), &PlayerRecordingController::saved, this,
            [this] { count(recordingIsSaved); });
    connect(app.finder().streams(), &SnifferDetectedStreamsModel::countChanged, this, [&] {
        if (app.finder().streams()->count() > 0)
            count(streamIsFound);
    });
    connect(&app.library(), &LocalM3UStore::entriesChanged, this,
            [this] { count(libraryChanges); });
}

void SoakTally::countPlayback(const PlayerModel &player)
{
    if (player.isPlaying() && player.currentTime() > 0)
        count(player.showsWebContent()    ? sitePlays
                  : player.isLiveStream() ? liveStreamPlays
                                          : filmPlays);
}

void SoakTally::countJob(const M3U8DownloadManager::JobState &job)
{
    if (!job.isActive)
        count(job.duration ? downloadIsSaved : downloadFails);
}

QString SoakTally::described() const
{
    QStringList texts;
    for (auto what = m_counts.cbegin(); what != m_counts.cend(); ++what)
        texts << u"%1 %2"_s.arg(what.key()).arg(what.value());
    return texts.join(u", "_s);
}

} // namespace lumaro
