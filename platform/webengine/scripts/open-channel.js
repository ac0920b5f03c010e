// Gives the scripts after this one their message handlers. The console reaches the application from
// every frame; the secret, which no page can read, tells what comes from here.
(function (secret, names) {
    "use strict";

    // The page's own scripts may replace what they find later.
    const write = console.debug.bind(console);
    const stringify = JSON.stringify;
    const longest = 65536;
    const messageHandlers = {};
    names.forEach(function (name) {
        messageHandlers[name] = {
            postMessage: function (body) {
                const text = stringify(body);
                if (typeof text === "string" && text.length <= longest)
                    write(secret + name + "\n" + text);
            }
        };
    });
    Object.defineProperty(window, "webkit", {
        value: { messageHandlers: messageHandlers },
        configurable: true
    });
})
