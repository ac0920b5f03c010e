// As much of a page as the browser's scripts touch.
var log = [];
var messages = [];
var nodes = [];

function Node(tag, attributes, parent) {
    this.tagName = tag.toUpperCase();
    this.attributes = attributes || {};
    this.parentElement = parent || null;
    this.textContent = this.attributes.text || "";
    this.href = this.attributes.href || "";
    this.style = this.attributes.style || {};
    this.size = this.attributes.size || [0, 0];
    this.removed = false;
}
Node.prototype.getAttribute = function (name) {
    return name in this.attributes ? this.attributes[name] : null;
};
Node.prototype.matches = function (selector) {
    var role = /^\[role="(\w+)"\]$/.exec(selector);
    return role ? this.getAttribute("role") === role[1]
                : this.tagName === selector.toUpperCase();
};
Node.prototype.closest = function (selectors) {
    var list = selectors.split(",").map(function (s) { return s.trim(); });
    for (var node = this; node; node = node.parentElement) {
        if (list.some(function (s) { return node.matches(s); }))
            return node;
    }
    return null;
};
Node.prototype.getBoundingClientRect = function () {
    return { width: this.size[0], height: this.size[1] };
};
Node.prototype.remove = function () { this.removed = true; };

var body = new Node("body");
var document = {
    title: "",
    baseURI: "https://site.example/watch/page.html",
    body: body,
    listeners: [],
    addEventListener: function (type, listener, capture) {
        this.listeners.push({ type: type, listener: listener, capture: capture });
    },
    dispatch: function (type, target) {
        var event = {
            type: type, target: target, defaultPrevented: false, stopped: false,
            preventDefault: function () { this.defaultPrevented = true; },
            stopPropagation: function () { this.stopped = true; },
            stopImmediatePropagation: function () { this.stopped = true; }
        };
        this.listeners.forEach(function (l) {
            if (l.type === type && l.capture === true)
                l.listener(event);
        });
        return event;
    }
};
// The style that the page's sheets give an element, as a browser reports it.
function getComputedStyle(node) {
    return { position: node.style.position || "static", zIndex: node.style.zIndex || "auto" };
}

function URL(address, base) {
    this.href = resolver.resolved(String(address), String(base || ""));
}
URL.prototype.toString = function () { return this.href; };

function XMLHttpRequest() {}
XMLHttpRequest.prototype.open = function () {
    log.push("open " + Array.prototype.slice.call(arguments).join(" "));
    return "opened";
};

var observers = [];
function PerformanceObserver(callback) { this.callback = callback; }
PerformanceObserver.prototype.observe = function (options) {
    observers.push({ callback: this.callback, options: options });
};
function loadResource(name) {
    observers.forEach(function (o) {
        if (o.options.type === "resource")
            o.callback({ getEntries: function () { return [{ name: name }]; } });
    });
}

var window = this;
window.fetch = function () {
    log.push("fetch " + Array.prototype.slice.call(arguments).map(String).join(" "));
    return "fetched";
};
window.open = function () {
    log.push("window.open " + Array.prototype.slice.call(arguments).join(" "));
    return "opened";
};
window.webkit = {
    messageHandlers: {
        m3u8SnifferResource: {
            postMessage: function (message) { messages.push(message); }
        }
    }
};
