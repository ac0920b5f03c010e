// Gives the scripts after this one their message handlers. What they post goes by an event to
// receive-messages.js, which runs in a world of its own.
(function (eventName, names) {
    "use strict";

    // The page's own scripts may replace what they find later.
    const dispatch = window.dispatchEvent.bind(window);
    const stringify = JSON.stringify;
    const Message = CustomEvent;
    const messageHandlers = {};
    names.forEach(function (name) {
        messageHandlers[name] = {
            postMessage: function (body) {
                const text = stringify(body);
                if (typeof text === "string")
                    dispatch(new Message(eventName, { detail: name + "\n" + text }));
            }
        };
    });
    Object.defineProperty(window, "webkit", {
        value: { messageHandlers: messageHandlers },
        configurable: true
    });
})
