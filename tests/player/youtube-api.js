// What the page around YouTube's player finds of the iframe player API, as far as it uses it.
var window = this;
var log = [];
var made = null;
var state = 1;
var time = 0;
var duration = 0;

var YT = {
    PlayerState: { UNSTARTED: -1, ENDED: 0, PLAYING: 1, PAUSED: 2, BUFFERING: 3, CUED: 5 },
    Player: function (element, options) {
        made = this;
        this.element = element;
        this.options = options;
        this.fail = function (code) { options.events.onError({ data: code }); };
        // The player's functions are there only when it is ready.
        this.becomeReady = function () {
            for (const name of ["playVideo", "pauseVideo", "seekTo", "setVolume", "mute", "unMute"])
                this[name] = (...given) => { log.push([name, ...given].join(" ")); };
            this.getPlayerState = () => state;
            this.getCurrentTime = () => time;
            this.getDuration = () => duration;
        };
        this.playVideo = function () { log.push("playVideo"); };
    }
};
