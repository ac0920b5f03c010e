#include "player/YouTubePage.h"

#include "platform/JsonText.h"

namespace lumaro {

namespace {

constexpr char16_t head[] = uR"html(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<meta name="referrer" content="strict-origin-when-cross-origin">
<meta name="viewport" content="width=device-width, initial-scale=1">
<style>
html, body, #player { width: 100%; height: 100%; margin: 0; overflow: hidden; background: black; }
iframe { width: 100%; height: 100%; border: 0; }
</style>
</head>
<body>
<div id="player"></div>
<script src=")html";

constexpr char16_t betweenScripts[] = uR"html(/iframe_api"></script>
<script>
)html";

constexpr char16_t tail[] = uR"html(
var player = null;
var varnFailure = 0;

function onYouTubeIframeAPIReady() {
    var playerVars = {
        autoplay: 1, controls: 1, playsinline: 1, rel: 0, enablejsapi: 1, origin: webOrigin
    };
    if (playlistID) {
        playerVars.listType = 'playlist';
        playerVars.list = playlistID;
    }
    var options = {
        width: '100%',
        height: '100%',
        playerVars: playerVars,
        events: {
            onReady: function (event) { event.target.playVideo(); },
            onError: function (event) { varnFailure = Number(event.data) || -1; }
        }
    };
    if (videoID)
        options.videoId = videoID;
    player = new YT.Player('player', options);
}

function varnToggle() {
    if (!player || !player.getPlayerState)
        return;
    if (player.getPlayerState() === YT.PlayerState.PLAYING)
        player.pauseVideo();
    else
        player.playVideo();
}

function varnSkip(seconds) {
    if (player && player.seekTo && player.getCurrentTime)
        player.seekTo(Math.max(0, player.getCurrentTime() + seconds), true);
}

function varnSetVolume(volume) {
    if (!player || !player.setVolume || !player.unMute)
        return;
    player.unMute();
    player.setVolume(Math.round(volume * 100));
}

function varnSetMuted(muted) {
    if (!player || !player.mute || !player.unMute)
        return;
    if (muted)
        player.mute();
    else
        player.unMute();
}
</script>
</body>
</html>
)html";

/// `text` as a JavaScript string inside an HTML script element, which "</script" would end. Not all
/// engines take JSON's line separators for part of a string.
QString literal(const QString &text)
{
    QString json = QString::fromUtf8(jsonString(text));
    json.replace(u'<', QStringLiteral("\\u003c"));
    json.replace(QChar(QChar::LineSeparator), QStringLiteral("\\u2028"));
    json.replace(QChar(QChar::ParagraphSeparator), QStringLiteral("\\u2029"));
    return json;
}

QString literal(const std::optional<QString> &text)
{
    return text ? literal(*text) : QStringLiteral("null");
}

QString origin(const QUrl &url)
{
    return url.toString(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment
                        | QUrl::FullyEncoded);
}

} // namespace

QString youTubePage(const YouTubeContent &content, const WebServices &services)
{
    return QString(head + origin(services.youTube) + betweenScripts + u"var videoID = "
                   + literal(content.videoID) + u";var playlistID = " + literal(content.playlistID)
                   + u";var webOrigin = " + literal(origin(services.product)) + u';' + tail);
}

} // namespace lumaro
