// Tells the server, in addresses below /told/, what a media element does.
function tell(what) { fetch("/told/" + what).catch(() => {}); }

let witnessed = "";
function witness(video, name) {
    const first = !witnessed;
    witnessed = name;
    if (!first)
        return;
    const now = what => tell(witnessed + "/" + what);
    for (const event of ["pause", "play", "ended"])
        video.addEventListener(event, () => now(event));
    video.addEventListener("seeked", () => now("at-" + Math.round(video.currentTime)));
    video.addEventListener("volumechange", () =>
        now("volume-" + Math.round(video.volume * 100) + (video.muted ? "-muted" : "")));
    setInterval(() => { if (!video.paused) now("beat"); }, 200);
}
