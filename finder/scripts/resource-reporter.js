// Tells the browser which HLS playlists this frame loads. Runs before the page's own scripts and
// must never get in their way.
(function () {
    "use strict";

    const playlistAddress = /\.m3u8(?:$|[?#])/i;
    const clickable = 'button, a, [role="button"], [role="option"], [role="menuitem"], li';
    const longestTitle = 4096;
    let lastSelectedName = "";
    // The page's own scripts come later, and may find something else there.
    let post = function () {};
    try {
        const handler = window.webkit.messageHandlers.m3u8SnifferResource;
        post = handler.postMessage.bind(handler);
    } catch (error) {
    }

    function report(value) {
        try {
            const url = new URL(String(value), document.baseURI).href;
            if (!playlistAddress.test(url))
                return;
            post({
                url: url,
                title: (lastSelectedName || document.title || "").slice(0, longestTitle),
                selected: lastSelectedName.length > 0
            });
        } catch (error) {
        }
    }

    function nameOf(element) {
        const text = element.getAttribute("aria-label") || element.textContent || "";
        const name = text.replace(/\s+/g, " ").trim();
        return name.length > 1 && name.length <= 120 ? name : "";
    }

    document.addEventListener("click", function (event) {
        try {
            const element = event.target.closest(clickable);
            lastSelectedName = (element && nameOf(element)) || lastSelectedName;
        } catch (error) {
        }
    }, true);

    document.addEventListener("play", function (event) {
        try {
            report(event.target.currentSrc || event.target.src);
        } catch (error) {
        }
    }, true);

    if (window.fetch) {
        const fetch = window.fetch;
        window.fetch = function (input) {
            try {
                report(input && input.url ? input.url : input);
            } catch (error) {
            }
            return fetch.apply(this, arguments);
        };
    }

    try {
        const open = XMLHttpRequest.prototype.open;
        XMLHttpRequest.prototype.open = function (method, url) {
            report(url);
            return open.apply(this, arguments);
        };
    } catch (error) {
    }

    try {
        new PerformanceObserver(function (list) {
            list.getEntries().forEach(function (entry) { report(entry.name); });
        }).observe({ type: "resource", buffered: true });
    } catch (error) {
    }
})();
