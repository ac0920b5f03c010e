// Pauses whatever plays in a frame's document: its media elements, those in shadow roots, and the
// players of the usual video sites in frames, which take messages.
(function () {
    "use strict";

    function attempt(action) {
        try {
            action();
        } catch (e) {
            // A page that defends itself must not keep the rest from pausing.
        }
    }

    function pauseIn(root) {
        attempt(function () {
            root.querySelectorAll("video, audio").forEach(function (media) {
                attempt(function () { media.pause(); });
            });
        });
        attempt(function () {
            root.querySelectorAll("iframe").forEach(function (frame) {
                attempt(function () {
                    frame.contentWindow.postMessage(
                        '{"event":"command","func":"pauseVideo","args":""}', "*");
                    frame.contentWindow.postMessage('{"method":"pause"}', "*");
                });
            });
        });
        attempt(function () {
            root.querySelectorAll("*").forEach(function (element) {
                if (element.shadowRoot)
                    pauseIn(element.shadowRoot);
            });
        });
    }

    pauseIn(document);
})();
