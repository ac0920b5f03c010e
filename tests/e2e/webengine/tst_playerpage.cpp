#include "platform/PlayerPage.h"
#include "tests/e2e/servers/ChildProcess.h"
#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/FreePort.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/Waiting.h"
#include "tests/e2e/webengine/EngineProgram.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTcpSocket>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

/// A player's page in the real engine.
class PlayerPageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void answersFromItsWorlds();
    void answersOnlyWhileThePageIsThere();
    void answersForTheNewPageOnly_data();
    void answersForTheNewPageOnly();
    void failuresAreTold_data();
    void failuresAreTold();
    void brokenCertificatesStop();
    void goesNowhereByItself();

private:
    bool loads(const QString &path)
    {
        const QSignalSpy loaded(m_page, &PlayerPage::loadFinished);
        m_page->load(m_site->url(path));
        return becomesTrue([&] { return loaded.count() > 0; });
    }
    QVariant answer(const QString &script, PlayerPage::World world)
    {
        std::optional<QVariant> answer;
        m_page->ask(script, world, [&answer](const QVariant &value) { answer = value; });
        return becomesTrue([&] { return answer.has_value(); }) ? *answer : QVariant();
    }

    std::unique_ptr<NginxServer> m_site;
    std::unique_ptr<FaultServer> m_faults;
    std::unique_ptr<QQuickView> m_window;
    PlayerPage *m_page = nullptr;
};

void PlayerPageTest::initTestCase()
{
    m_site = valueOrFail(NginxServer::start());
    QVERIFY(m_site);
    QVERIFY(m_site->writeFile(u"page.html"_s,
                              "<!DOCTYPE html><video></video><script>"
                              "var own = 5; Array.prototype.toJSON = () => 'forged';"
                              "document.querySelector = () => ({ currentTime: 'forged' });"
                              "</script>"));
    m_faults = valueOrFail(FaultServer::start());
    QVERIFY(m_faults);
    FaultResponse nothing;
    nothing.status = 204;
    m_faults->route("/nothing", nothing);
    FaultResponse endless = FaultResponse::of(
        "text/html", "<!DOCTYPE html><script>var own = 5;</script>" + QByteArray(4096, ' '));
    endless.stallAfter = 4096;
    m_faults->route("/endless.html", endless);
    QVERIFY(m_site->writeFile(u"away.html"_s,
                              "<!DOCTYPE html><script>"
                              "setTimeout(() => { location = '/page.html'; }, 0);"
                              "setTimeout(() => { fetch('/stayed'); }, 500);"
                              "</script>"));
    m_window = std::make_unique<QQuickView>();
    m_window->engine()->addImportPath(u"qrc:/qt/qml"_s);
    m_window->setSource(QUrl::fromLocalFile(QFINDTESTDATA("PlayerWorld.qml")));
    m_page = m_window->rootObject()->property("page").value<PlayerPage *>();
    QVERIFY(m_page);
    m_window->resize(400, 300);
    m_window->show();
}

void PlayerPageTest::answersFromItsWorlds()
{
    using World = PlayerPage::World;
    QVERIFY(loads(u"/page.html"_s));
    QCOMPARE(answer(u"typeof own"_s, World::Page), u"number"_s);
    QCOMPARE(answer(u"typeof own"_s, World::Isolated), u"undefined"_s);
    // What a page has replaced, it has replaced for itself.
    const QString time = u"[1, document.querySelector('video').currentTime]"_s;
    QCOMPARE(answer(time, World::Isolated).toList(), (QVariantList{1, 0}));
    QCOMPARE(answer(time, World::Page).toList().value(1), u"forged"_s);
    QVERIFY(!answer(u"nonsense("_s, World::Page).isValid());
}

void PlayerPageTest::answersOnlyWhileThePageIsThere()
{
    QVERIFY(loads(u"/page.html"_s));
    int answers = 0;
    m_page->ask(u"1"_s, PlayerPage::World::Page, [&answers](const QVariant &) { ++answers; });
    QVERIFY(loads(u"/page.html"_s));
    QCOMPARE(answer(u"2"_s, PlayerPage::World::Page), 2);
    QCOMPARE(answers, 0);
}

void PlayerPageTest::answersForTheNewPageOnly_data()
{
    QTest::addColumn<bool>("isHtml");
    QTest::addColumn<QString>("before");
    QTest::newRow("address") << false << u"/page.html"_s;
    QTest::newRow("text") << true << u"/page.html"_s;
    QTest::newRow("while the one before is loading") << false << u"/endless.html"_s;
}

void PlayerPageTest::answersForTheNewPageOnly()
{
    QFETCH(const bool, isHtml);
    QFETCH(const QString, before);
    const QByteArray text = "<!DOCTYPE html><title>New</title><script>var own = 7;</script>";
    FaultResponse late = FaultResponse::of("text/html", text);
    late.delay = std::chrono::seconds(2);
    m_faults->route("/late.html", late);
    m_page->load(before == u"/page.html" ? m_site->url(before) : m_faults->url(before.toLatin1()));
    QVERIFY(becomesTrue(
        [&] { return answer(u"typeof own"_s, PlayerPage::World::Page) == u"number"_s; }));

    const QSignalSpy loaded(m_page, &PlayerPage::loadFinished);
    const QSignalSpy failed(m_page, &PlayerPage::loadFailed);
    if (isHtml)
        m_page->loadHtml(QString::fromLatin1(text), m_site->url({}));
    else
        m_page->load(m_faults->url("/late.html"));
    QStringList answers;
    QVERIFY(becomesTrue([&] {
        answers += answer(u"typeof own === 'number' ? String(own) : ''"_s, PlayerPage::World::Page)
                       .toString();
        return loaded.count() > 0;
    }));
    answers.removeAll(QString());
    answers.removeDuplicates();
    QVERIFY2(answers.isEmpty() || answers == QStringList(u"7"_s), qPrintable(answers.join(u' ')));
    QCOMPARE(answer(u"own"_s, PlayerPage::World::Page), 7);
    QCOMPARE(loaded.count(), 1);
    QCOMPARE(failed.count(), 0);
}

void PlayerPageTest::failuresAreTold_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QString>("description");
    QTest::newRow("status") << m_site->url(u"/status/403"_s)
                            << u"The site answers with an error (403)."_s;
    QTest::newRow("nobody there") << QUrl(u"http://127.0.0.1:%1/"_s.arg(freePort()))
                                  << u"The server cannot be reached."_s;
    QTest::newRow("led elsewhere") << m_site->url(u"/redirect?to=http://localhost:1/"_s)
                                   << u"The site leads to another page in place of its player."_s;
    QTest::newRow("no page") << m_faults->url("/nothing")
                             << u"What the site sends is not a page."_s;
}

void PlayerPageTest::failuresAreTold()
{
    QFETCH(const QUrl, url);
    QSignalSpy failed(m_page, &PlayerPage::loadFailed);
    m_page->load(url);
    QVERIFY(becomesTrue([&] { return failed.count() > 0; }));
    QTEST(failed.first().first().toString(), "description");
}

void PlayerPageTest::brokenCertificatesStop()
{
    const QTemporaryDir folder;
    const QString key = folder.filePath(u"key"_s);
    const QString certificate = folder.filePath(u"certificate"_s);
    ChildProcess maker;
    QVERIFY(maker.start(u"openssl"_s,
                        {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s,
                         u"-keyout"_s, key, u"-out"_s, certificate, u"-subj"_s, u"/CN=nobody"_s},
                        {}));
    QVERIFY(maker.waitForFinished(std::chrono::seconds(30)));
    const quint16 port = freePort();
    ChildProcess server;
    QVERIFY(server.start(u"openssl"_s,
                         {u"s_server"_s, u"-quiet"_s, u"-www"_s, u"-accept"_s,
                          QString::number(port), u"-key"_s, key, u"-cert"_s, certificate},
                         {}));
    QVERIFY(becomesTrue([port] {
        QTcpSocket socket;
        socket.connectToHost(u"127.0.0.1"_s, port);
        return socket.waitForConnected(200);
    }));
    QSignalSpy failed(m_page, &PlayerPage::loadFailed);
    m_page->load(QUrl(u"https://127.0.0.1:%1/"_s.arg(port)));
    QVERIFY(becomesTrue([&] { return failed.count() > 0; }));
    QCOMPARE(failed.first().first().toString(), u"The server could not prove who it is."_s);
}

void PlayerPageTest::goesNowhereByItself()
{
    QList<QUrl> asked;
    m_page->setNavigationPolicy([&asked](const NavigationAction &action) {
        asked.append(action.url);
        return false;
    });
    QVERIFY(loads(u"/away.html"_s));
    QVERIFY(
        becomesTrue([&] { return m_site->accessLog().join(u'\n').contains(u"GET /stayed "_s); }));
    QCOMPARE(asked, QList{m_site->url(u"/page.html"_s)});
    QCOMPARE(answer(u"location.pathname"_s, PlayerPage::World::Isolated), u"/away.html"_s);
}

int main(int argc, char *argv[])
{
    return runWithEngine(argc, argv, [&] {
        PlayerPageTest test;
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_playerpage.moc"
