#include "tests/e2e/app/AppWorld.h"

#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

class AppDownloadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<AppWorld>(); }
    void cleanup() { m_world.reset(); }

    void savesTheStreamThatPlays();
    void panelOpensAndCloses();
    void asksForTheFolder();

private:
    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<AppWorld> m_world;
};

void AppDownloadsTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    const QString master =
        valueOrFail(MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::Hls));
    QVERIFY(m_nginx->publish(QFileInfo(master).absolutePath(), u"film"_s));
}

void AppDownloadsTest::savesTheStreamThatPlays()
{
    const QUrl stream = m_nginx->url(u"/film/master.m3u8"_s);
    m_world->player().play(stream, u"Film"_s, true);
    QVERIFY(m_world->playsTo(0.2));
    m_world->press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(m_world->downloads().panelShown());
    const auto job = [&] {
        return m_world->downloads().manager()->jobs().value(M3U8DownloadManager::keyOf(stream));
    };
    QVERIFY(becomesTrue([&] { return job().message == u"Saved"; }));
    QVERIFY(QFileInfo(job().destination.toLocalFile()).size() > 500'000);
    QVERIFY(m_world->player().isPlaying());
}

void AppDownloadsTest::panelOpensAndCloses()
{
    const auto isShown = [this] { return m_world->downloads().panelShown(); };
    const QImage without = m_world->screen();
    m_world->press(Qt::Key_J, Qt::ControlModifier);
    QVERIFY(isShown());
    QVERIFY(becomesTrue([&] { return m_world->screen() != without; }));
    m_world->press(Qt::Key_J, Qt::ControlModifier);
    QVERIFY(!isShown());

    // Escape closes the panel first, then leaves full screen.
    m_world->press(Qt::Key_F);
    QVERIFY(becomesTrue([&] { return m_world->window().visibility() == QWindow::FullScreen; }));
    m_world->press(Qt::Key_J, Qt::ControlModifier);
    QVERIFY(isShown());
    m_world->press(Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !isShown(); }));
    QVERIFY(m_world->shell().isFullScreen());
    m_world->press(Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !m_world->shell().isFullScreen(); }));
}

void AppDownloadsTest::asksForTheFolder()
{
    const QString before = m_world->downloads().saveFolderPath();
    const QImage without = m_world->screen();
    m_world->downloads().manager()->chooseSaveFolder();
    QVERIFY(becomesTrue([&] { return m_world->screen() != without; }));
    m_world->press(Qt::Key_Escape);
    QCOMPARE(m_world->downloads().saveFolderPath(), before);
}

LUMARO_APP_TEST_MAIN(AppDownloadsTest)
#include "tst_app_downloads.moc"
