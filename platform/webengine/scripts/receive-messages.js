// Runs in every frame, in a world that its page cannot enter, and hands on to the application what
// user scripts post in the page's world, and where the user clicks or presses keys. The console
// reaches the application from every frame; the secret tells what comes from here.
(function (eventName, secret, longest) {
    "use strict";

    // A frame's first page may share the world with the empty one before it.
    if (window.receivesMessages)
        return;
    window.receivesMessages = true;
    window.addEventListener(eventName, function (event) {
        const message = event.detail;
        if (typeof message === "string" && message.length <= longest)
            console.debug(secret + ":" + message);
    }, true);

    // Each frame pauses its own media and tells the frames in it.
    const pausing = "lumaro:pause";
    window.pauseAllMedia = function (root) {
        const place = root || document;
        place.querySelectorAll("video, audio").forEach(function (media) { media.pause(); });
        place.querySelectorAll("*").forEach(function (element) {
            if (element.shadowRoot)
                window.pauseAllMedia(element.shadowRoot);
        });
        for (let i = 0; !root && i < window.frames.length; ++i)
            window.frames[i].postMessage(pausing, "*");
    };
    window.addEventListener("message", function (event) {
        // Whoever else says so can do no more than pause.
        if (event.data === pausing)
            window.pauseAllMedia();
    }, true);

    const place = window === window.top ? "!page" : "!frame";
    ["mousedown", "pointerdown", "touchstart", "keydown"].forEach(function (kind) {
        window.addEventListener(kind, function (event) {
            if (event.isTrusted)
                console.debug(secret + place);
        }, true);
    });
})
