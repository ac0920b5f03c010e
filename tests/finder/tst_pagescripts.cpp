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

QTEST_GUILESS_MAIN(PageScriptsTest)
#include "tst_pagescripts.moc"
