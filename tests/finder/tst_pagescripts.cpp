#include "finder/PageScripts.h"
#include "tests/finder/FakePage.h"

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

class PageScriptsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsPlaylists_data();
    void reportsPlaylists();
    void leavesThePageAlone();
    void survivesAPoorPage_data();
    void survivesAPoorPage();
    void namesWhatWasClicked_data();
    void namesWhatWasClicked();
    void blocksWindows();
    void removesOverlays_data();
    void removesOverlays();
    void letsOverlaysBeWhenOff();
    void pausesWhatPlays();
};

void PageScriptsTest::reportsPlaylists_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("url"); // empty: nothing
    QTest::newRow("fetch") << u"fetch('/live/a.m3u8?x')"_s
                           << u"https://site.example/live/a.m3u8?x"_s;
    QTest::newRow("fetch of a request")
        << u"fetch({ url: 'https://cdn/a.M3U8' })"_s << u"https://cdn/a.M3U8"_s;
    QTest::newRow("fetch of an address object")
        << u"fetch(new URL('https://cdn/a.m3u8'))"_s << u"https://cdn/a.m3u8"_s;
    QTest::newRow("fetch of nothing") << u"fetch()"_s << QString();
    QTest::newRow("XMLHttpRequest") << u"new XMLHttpRequest().open('GET', 'a.m3u8')"_s
                                    << u"https://site.example/watch/a.m3u8"_s;
    QTest::newRow("resource") << u"loadResource('https://cdn/a.m3u8')"_s << u"https://cdn/a.m3u8"_s;
    QTest::newRow("play") << u"document.dispatch('play', { currentSrc: 'https://cdn/a.m3u8' })"_s
                          << u"https://cdn/a.m3u8"_s;
    QTest::newRow("play, source not chosen yet")
        << u"document.dispatch('play', { currentSrc: '', src: 'https://cdn/b.m3u8' })"_s
        << u"https://cdn/b.m3u8"_s;
    QTest::newRow("play of nothing") << u"document.dispatch('play', {})"_s << QString();
    QTest::newRow("segment") << u"fetch('https://cdn/a.m3u8/1.ts')"_s << QString();
    QTest::newRow("hostile value")
        << u"fetch({ toString: function () { throw 1; } })"_s << QString();
}

void PageScriptsTest::reportsPlaylists()
{
    QFETCH(const QString, action);
    QFETCH(const QString, url);
    FakePage page;
    page.run(resourceReporterScript());
    page.run(u"document.title = 'Watch';"_s);
    page.run(u"try { "_s + action + u" } catch (e) {}"_s);
    const QVariantList messages = page.takeMessages();
    QCOMPARE(messages.size(), url.isEmpty() ? 0 : 1);
    const QVariantMap message = messages.value(0).toMap();
    QTEST(message.value(u"url"_s).toString(), "url");
    if (!url.isEmpty()) {
        QCOMPARE(message.value(u"title"_s), u"Watch"_s);
        QCOMPARE(message.value(u"selected"_s), false);
    }
}

void PageScriptsTest::leavesThePageAlone()
{
    FakePage page;
    page.run(resourceReporterScript());
    QCOMPARE(page.run(u"fetch('a.m3u8', 2)"_s), u"fetched"_s);
    QCOMPARE(page.run(u"new XMLHttpRequest().open('GET', 'a.m3u8', false)"_s), u"opened"_s);
    QCOMPARE(page.run(u"log"_s).toStringList(),
             (QStringList{u"fetch a.m3u8 2"_s, u"open GET a.m3u8 false"_s}));
    QCOMPARE(page.run(u"document.dispatch('click', new Node('a', { text: 'Server' })).stopped"_s),
             false);
}

void PageScriptsTest::survivesAPoorPage_data()
{
    QTest::addColumn<QString>("before");
    QTest::newRow("no fetch") << u"window.fetch = undefined"_s;
    QTest::newRow("no XMLHttpRequest") << u"XMLHttpRequest = undefined"_s;
    QTest::newRow("no performance observer") << u"PerformanceObserver = undefined"_s;
    QTest::newRow("no message handler") << u"window.webkit = undefined"_s;
    QTest::newRow("handler throws")
        << u"window.webkit.messageHandlers.m3u8SnifferResource.postMessage = function () { throw 1; }"_s;
}

void PageScriptsTest::survivesAPoorPage()
{
    QFETCH(const QString, before);
    FakePage page;
    page.run(before);
    page.run(resourceReporterScript());
    page.run(u"document.dispatch('play', { src: 'https://cdn/a.m3u8' })"_s);
    QCOMPARE(page.takeMessages().size(), before.contains(u"webkit"_s) ? 0 : 1);
    page.run(u"document.dispatch('click', document)"_s);
}

void PageScriptsTest::namesWhatWasClicked_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("title");
    QTest::newRow("button") << u"new Node('button', { text: '  Server\\n  1 ' })"_s
                            << u"Server 1"_s;
    QTest::newRow("inside a link")
        << u"new Node('span', {}, new Node('a', { text: 'Episode 2' }))"_s << u"Episode 2"_s;
    QTest::newRow("label first") << u"new Node('li', { 'aria-label': 'HD', text: 'other' })"_s
                                 << u"HD"_s;
    QTest::newRow("role") << u"new Node('div', { role: 'option', text: '720p' })"_s << u"720p"_s;
    QTest::newRow("no such role") << u"new Node('div', { role: 'tab', text: '720p' })"_s
                                  << QString();
    QTest::newRow("one character") << u"new Node('a', { text: ' 1 ' })"_s << QString();
    QTest::newRow("120") << u"new Node('a', { text: 'x'.repeat(120) })"_s << QString(120, u'x');
    QTest::newRow("121") << u"new Node('a', { text: 'x'.repeat(121) })"_s << QString();
    QTest::newRow("plain text") << u"new Node('p', { text: 'Server 1' })"_s << QString();
}

void PageScriptsTest::namesWhatWasClicked()
{
    QFETCH(const QString, node);
    QFETCH(const QString, title);
    FakePage page;
    page.run(resourceReporterScript());
    page.run(u"document.title = 'Watch'; document.dispatch('click', "_s + node + u")"_s);
    page.run(u"fetch('a.m3u8')"_s);
    QVariantMap message = page.takeMessages().value(0).toMap();
    QCOMPARE(message.value(u"title"_s), title.isEmpty() ? u"Watch"_s : title);
    QCOMPARE(message.value(u"selected"_s), !title.isEmpty());

    // A click on something nameless leaves the name in place.
    page.run(u"document.dispatch('click', new Node('video')); fetch('b.m3u8')"_s);
    message = page.takeMessages().value(0).toMap();
    QCOMPARE(message.value(u"selected"_s), !title.isEmpty());
}

void PageScriptsTest::blocksWindows()
{
    FakePage page;
    page.run(adBlockerFlagScript(true));
    page.run(popupOverrideScript());
    QCOMPARE(page.run(u"open('https://ads.example') === null"_s), true);
    QCOMPARE(page.run(u"log.length"_s), 0);
    page.run(adBlockerFlagScript(false));
    QCOMPARE(page.run(u"window.open('https://a.example', 'x')"_s), u"opened"_s);
    QCOMPARE(page.run(u"log"_s).toStringList(), QStringList{u"window.open https://a.example x"_s});
    page.run(adBlockerFlagScript(true));
    QCOMPARE(page.run(u"window.open() === null"_s), true);
}

void PageScriptsTest::removesOverlays_data()
{
    QTest::addColumn<QString>("change"); // to a link that is removed
    QTest::addColumn<bool>("removed");
    QTest::newRow("fixed") << QString() << true;
    QTest::newRow("absolute") << u"link.style.position = 'absolute'"_s << true;
    QTest::newRow("relative") << u"link.style.position = 'relative'"_s << false;
    QTest::newRow("z-index 99") << u"link.style.zIndex = '99'"_s << false;
    QTest::newRow("no z-index") << u"link.style.zIndex = undefined"_s << false;
    QTest::newRow("z-index empty") << u"link.style.zIndex = ''"_s << false;
    QTest::newRow("narrow") << u"link.size = [250, 900]"_s << false;
    QTest::newRow("flat") << u"link.size = [900, 250]"_s << false;
    QTest::newRow("just large enough") << u"link.size = [251, 251]"_s << true;
    QTest::newRow("place in the page") << u"link.attributes.href = '#top'"_s << false;
    QTest::newRow("script") << u"link.attributes.href = 'JavaScript:play()'"_s << false;
    QTest::newRow("no address") << u"delete link.attributes.href"_s << true;
    QTest::newRow("not a link") << u"link.tagName = 'DIV'"_s << false;
    QTest::newRow("throws") << u"link.getBoundingClientRect = null"_s << false;
}

void PageScriptsTest::removesOverlays()
{
    QFETCH(const QString, change);
    QFETCH(const bool, removed);
    FakePage page;
    page.run(adBlockerFlagScript(true));
    page.run(popupOverrideScript());
    page.run(u"var link = new Node('a', { href: 'https://ads.example', size: [300, 300],"
             u"                           style: { position: 'fixed', zIndex: '100' } }, body);"
             u"var image = new Node('img', {}, new Node('span', {}, link));"_s);
    page.run(change);
    page.run(u"var event = document.dispatch('click', image)"_s);
    QCOMPARE(page.run(u"link.removed"_s), removed);
    QCOMPARE(page.run(u"event.defaultPrevented"_s), removed);
    QCOMPARE(page.run(u"event.stopped"_s), removed);
}

void PageScriptsTest::letsOverlaysBeWhenOff()
{
    FakePage page;
    page.run(adBlockerFlagScript(false));
    page.run(popupOverrideScript());
    page.run(u"var link = new Node('a', { href: 'https://ads.example', size: [300, 300],"
             u"                           style: { position: 'fixed', zIndex: '100' } }, body);"
             u"document.dispatch('click', link)"_s);
    QCOMPARE(page.run(u"link.removed"_s), false);
    page.run(u"document.dispatch('click', body); document.dispatch('click', document)"_s);
}

void PageScriptsTest::pausesWhatPlays()
{
    FakePage page;
    page.run(uR"(
        function root(name, inner) {
            var film = { pause: function () { log.push("pause " + name); } };
            var broken = { pause: function () { throw 1; } };
            var frame = { contentWindow: { postMessage: function (message, origin) {
                log.push(name + " " + message + " to " + origin); } } };
            var locked = { get contentWindow() { throw 1; } };
            return { querySelectorAll: function (selector) {
                return selector === "video, audio" ? [broken, film]
                     : selector === "iframe" ? [locked, frame] : [film, { shadowRoot: inner }];
            } };
        }
        document.querySelectorAll = root("page", root("shadow", null)).querySelectorAll;)"_s);
    page.run(mediaPauseScript());
    const QString play = uR"({"event":"command","func":"pauseVideo","args":""} to *)"_s;
    const QString pause = uR"({"method":"pause"} to *)"_s;
    QCOMPARE(page.run(u"log"_s).toStringList(),
             (QStringList{u"pause page"_s, u"page "_s + play, u"page "_s + pause, u"pause shadow"_s,
                          u"shadow "_s + play, u"shadow "_s + pause}));

    // A page without any of that is left alone.
    FakePage().run(mediaPauseScript());
}

QTEST_GUILESS_MAIN(PageScriptsTest)
#include "tst_pagescripts.moc"
