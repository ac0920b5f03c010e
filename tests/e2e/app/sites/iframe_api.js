// Stands in for YouTube's iframe player API: the same interface, over a page with a media element.
(function () {
    "use strict";

    const site = new URL(document.currentScript.src).origin;
    const commands = ["playVideo", "pauseVideo", "seekTo", "setVolume", "mute", "unMute"];

    function Player(element, options) {
        const self = this;
        const info = { time: 0, duration: 0, state: -1 };
        const listeners = options.events;
        const parameters = new URLSearchParams(options.playerVars);
        if (options.videoId)
            parameters.set("v", options.videoId);
        const frame = document.createElement("iframe");
        frame.id = element;
        frame.allow = "autoplay; fullscreen";
        frame.src = site + "/embed.html?" + parameters;
        document.getElementById(element).replaceWith(frame);

        function tell(event, data) {
            if (listeners[event])
                listeners[event]({ target: self, data: data });
        }

        window.addEventListener("message", function (message) {
            if (message.source !== frame.contentWindow || message.origin !== site)
                return;
            const said = message.data;
            Object.assign(info, said.info);
            if (said.event === "onReady") {
                for (const name of commands)
                    self[name] = (...given) => frame.contentWindow.postMessage({ name, given }, site);
                self.getPlayerState = () => info.state;
                self.getCurrentTime = () => info.time;
                self.getDuration = () => info.duration;
            }
            if (said.event)
                tell(said.event, said.data);
        });
    }

    window.YT = {
        PlayerState: { UNSTARTED: -1, ENDED: 0, PLAYING: 1, PAUSED: 2, BUFFERING: 3, CUED: 5 },
        Player: Player
    };
    addEventListener("DOMContentLoaded", function () { window.onYouTubeIframeAPIReady(); });
})();
