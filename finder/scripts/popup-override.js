// Keeps pages from opening windows and from catching clicks with overlays while the ad blocker is
// on. Runs before the page's own scripts, after the flag has been set.
(function () {
    "use strict";

    function isBlocking() {
        return window.__varnAdBlockerEnabled === true;
    }

    const open = window.open;
    window.open = function () {
        return isBlocking() ? null : open.apply(window, arguments);
    };

    function isOverlayLink(element) {
        if (element.tagName !== "A")
            return false;
        const style = getComputedStyle(element);
        const box = element.getBoundingClientRect();
        return (style.position === "fixed" || style.position === "absolute")
            && parseInt(style.zIndex || "0", 10) >= 100
            && box.width > 250 && box.height > 250
            && !/^\s*(?:#|javascript:)/i.test(element.getAttribute("href") || "");
    }

    document.addEventListener("click", function (event) {
        if (!isBlocking())
            return;
        try {
            let element = event.target;
            while (element && element !== document.body) {
                if (isOverlayLink(element)) {
                    event.preventDefault();
                    event.stopPropagation();
                    element.remove();
                    return;
                }
                element = element.parentElement;
            }
        } catch (error) {
        }
    }, true);
})();
