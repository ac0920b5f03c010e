// Hides what the rules hide in this frame, from before the page has any element. `rules` is a list
// of {filter, caseSensitive, party, domains, excluded, selector}.
(function (rules) {
    "use strict";

    const address = location.href.replace(/#.*$/, "");
    const ancestors = location.ancestorOrigins;
    const page = ancestors.length > 0 ? hostOf(ancestors[ancestors.length - 1]) : location.hostname;

    function hostOf(origin) {
        try {
            return new URL(origin).hostname;
        } catch (error) {
            return "";
        }
    }

    // What belongs to one owner: the last two labels, or an address that is a number.
    function siteOf(host) {
        return /^\[|\.\d+$/.test(host) ? host : host.split(".").slice(-2).join(".");
    }

    function isOn(domain) {
        const name = domain.replace(/^\*/, "");
        return page === name || (name !== domain && page.endsWith("." + name));
    }

    function isFirstParty() {
        return page === "" || siteOf(page) === siteOf(location.hostname);
    }

    function applies(rule) {
        return new RegExp(rule.filter, rule.caseSensitive ? "" : "i").test(address)
            && (rule.party === "" || (rule.party === "first") === isFirstParty())
            && (rule.domains.length === 0 || rule.domains.some(isOn) !== rule.excluded);
    }

    // In a block of its own, a selector that the browser does not know spoils no other.
    const sheet = rules.filter(applies)
        .map(function (rule) { return rule.selector + " { display: none !important; }\n"; })
        .join("");
    if (sheet === "")
        return;

    function add() {
        const style = document.createElementNS("http://www.w3.org/1999/xhtml", "style");
        style.textContent = sheet;
        document.documentElement.appendChild(style);
    }

    if (document.documentElement) {
        add();
    } else {
        new MutationObserver(function (changes, observer) {
            if (!document.documentElement)
                return;
            observer.disconnect();
            add();
        }).observe(document, { childList: true });
    }
})
