#include "tests/e2e/app/AppWorld.h"

#include <QMimeData>
#include <QQuickItem>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

Q_DECLARE_METATYPE(std::function<void(AppWorld &)>)
Q_DECLARE_METATYPE(std::function<QString(AppWorld &)>)

/// The main window driven as a user does, by keys, mouse and drops.
class AppWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<AppWorld>(); }
    void cleanup() { m_world.reset(); }

    void keysDriveThePlayer();
    void typingIsNotForThePlayer();
    void fullScreenTakesTheKeysFromTheSidebar();
    void keyboardReachesTheFadedControls();
    void doubleClickTogglesFullScreen();
    void clickOnThePictureEndsTyping();
    void comesToTheFrontAsItIs_data();
    void comesToTheFrontAsItIs();
    void desktopMakesItFillTheScreen_data();
    void desktopMakesItFillTheScreen();
    void dropsPlay_data();
    void dropsPlay();
    void filePanelsAskForWhatIsWantedNow();
    void hiddenFieldsTakeNoKeys_data();
    void hiddenFieldsTakeNoKeys();
    void enterKeepsWhatIsNoAddress();
    void searchIsReachedFromThePicture();
    void errorOverThePictureIsClosed();
    void programStartsPlaysAndQuits();
    void programSaysWhatItIs();

private:
    QPoint pictureCentre()
    {
        // Right of the sidebar, above the controls.
        return {m_world->window().width() - 200, m_world->window().height() / 2};
    }

    /// Something in the window says `text`.
    bool isShown(const QString &text)
    {
        QList<QQuickItem *> items{m_world->window().contentItem()};
        while (!items.isEmpty()) {
            const QQuickItem *item = items.takeLast();
            if (item->isVisible() && item->property("text").toString() == text)
                return true;
            items += item->childItems();
        }
        return false;
    }

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<NginxServer> m_nginx;
    QString m_movie;
    std::unique_ptr<AppWorld> m_world;
};

void AppWindowTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    QVERIFY(m_nginx);
    m_movie = valueOrFail(m_media.path(Fixture::Movie));
    QVERIFY(m_nginx->publish(m_movie, u"movie.mp4"_s));
    QVERIFY(m_nginx->writeFile(u"list.m3u"_s, "#EXTINF:-1,One\nmovie.mp4\n"));
}

void AppWindowTest::keysDriveThePlayer()
{
    PlayerModel &player = m_world->player();
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.2));
    m_world->press(Qt::Key_Space);
    QVERIFY(!player.isPlaying());
    m_world->press(Qt::Key_Right, Qt::AltModifier);
    QVERIFY(becomesTrue([&] { return player.currentTime() > 20; }));
    m_world->press(Qt::Key_Left);
    QVERIFY(becomesTrue([&] { return player.currentTime() < 17; }));
    m_world->press(Qt::Key_Down);
    QCOMPARE(player.volume(), 0.95);
    QCOMPARE(player.toastMessage(), u"Volume: 95%"_s);
    m_world->press(Qt::Key_M, Qt::ControlModifier);
    QVERIFY(player.isMuted());
    m_world->press(Qt::Key_B, Qt::ControlModifier);
    QVERIFY(!m_world->shell().sidebarVisible());
    m_world->press(Qt::Key_F);
    QVERIFY(m_world->shell().isFullScreen());
    m_world->press(Qt::Key_Escape);
    QVERIFY(!m_world->shell().isFullScreen());
    m_world->press(Qt::Key_K, Qt::ControlModifier);
    QVERIFY(player.currentURL().isEmpty());
}

void AppWindowTest::typingIsNotForThePlayer()
{
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.2));
    m_world->press(Qt::Key_L, Qt::ControlModifier);
    m_world->type(u"f k"_s);
    m_world->press(Qt::Key_Left);
    QVERIFY(m_world->player().isPlaying());
    QVERIFY(!m_world->shell().isFullScreen());
    QCOMPARE(m_world->shell().addressText(), u"f k"_s);
}

void AppWindowTest::fullScreenTakesTheKeysFromTheSidebar()
{
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.2));
    m_world->press(Qt::Key_L, Qt::ControlModifier);
    m_world->press(Qt::Key_F11);
    QVERIFY(m_world->shell().isFullScreen());
    m_world->press(Qt::Key_Space);
    QVERIFY(!m_world->player().isPlaying());
    QCOMPARE(m_world->shell().addressText(), QString());

    m_world->press(Qt::Key_L, Qt::ControlModifier);
    QVERIFY(!m_world->shell().isFullScreen());
    m_world->type(u"a b"_s);
    QCOMPARE(m_world->shell().addressText(), u"a b"_s);
}

void AppWindowTest::keyboardReachesTheFadedControls()
{
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] { return !m_world->shell().controlsVisible(); }));
    m_world->press(Qt::Key_Tab);
    QVERIFY(m_world->shell().controlsVisible());
    m_world->press(Qt::Key_Tab);
    QVERIFY(becomesTrue([&] { return m_world->shell().controlsInUse(); }));
}

void AppWindowTest::doubleClickTogglesFullScreen()
{
    QTest::mouseDClick(&m_world->window(), Qt::LeftButton, {}, pictureCentre());
    QVERIFY(becomesTrue([&] { return m_world->window().visibility() == QWindow::FullScreen; }));
    QVERIFY(m_world->shell().isFullScreen());
    QTest::mouseDClick(&m_world->window(), Qt::LeftButton, {}, pictureCentre());
    QVERIFY(becomesTrue([&] { return m_world->window().visibility() == QWindow::Windowed; }));
}

void AppWindowTest::clickOnThePictureEndsTyping()
{
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.2));
    m_world->press(Qt::Key_L, Qt::ControlModifier);
    QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, pictureCentre());
    m_world->press(Qt::Key_Space);
    QVERIFY(!m_world->player().isPlaying());
    QCOMPARE(m_world->shell().addressText(), QString());
}

void AppWindowTest::comesToTheFrontAsItIs_data()
{
    QTest::addColumn<Qt::WindowStates>("before");
    QTest::addColumn<QWindow::Visibility>("after");
    const auto row = [](const char *name, Qt::WindowStates before, QWindow::Visibility after) {
        QTest::newRow(name) << before << after;
    };
    row("ordinary", Qt::WindowNoState, QWindow::Windowed);
    row("maximised", Qt::WindowMaximized, QWindow::Maximized);
    row("full screen", Qt::WindowFullScreen, QWindow::FullScreen);
    row("minimised", Qt::WindowMinimized, QWindow::Windowed);
    row("minimised, maximised before", Qt::WindowMinimized | Qt::WindowMaximized,
        QWindow::Maximized);
}

void AppWindowTest::comesToTheFrontAsItIs()
{
    QFETCH(const Qt::WindowStates, before);
    QFETCH(const QWindow::Visibility, after);
    QQuickWindow &window = m_world->window();
    window.setWindowStates(before);
    m_world->bringToFront();
    QCOMPARE(window.visibility(), after);
    QVERIFY(window.isVisible());
    // Nor does it change its mind.
    QVERIFY(becomesTrue([&] { return window.isActive(); }));
    QCOMPARE(window.visibility(), after);
    QCOMPARE(m_world->shell().isFullScreen(), after == QWindow::FullScreen);
}

void AppWindowTest::desktopMakesItFillTheScreen_data()
{
    QTest::addColumn<Qt::WindowState>("before");
    QTest::addColumn<QWindow::Visibility>("after");
    QTest::newRow("ordinary") << Qt::WindowNoState << QWindow::Windowed;
    QTest::newRow("maximised") << Qt::WindowMaximized << QWindow::Maximized;
}

void AppWindowTest::desktopMakesItFillTheScreen()
{
    QFETCH(const Qt::WindowState, before);
    QFETCH(const QWindow::Visibility, after);
    QQuickWindow &window = m_world->window();
    window.setWindowStates(before);
    window.setWindowStates(Qt::WindowFullScreen);
    QVERIFY(m_world->shell().isFullScreen());
    m_world->press(Qt::Key_Escape);
    QVERIFY(!m_world->shell().isFullScreen());
    QCOMPARE(window.visibility(), after);
}

void AppWindowTest::dropsPlay_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isList");
    const QUrl movie = m_nginx->url(u"/movie.mp4"_s);
    QTest::newRow("file") << QList{QUrl::fromLocalFile(m_movie)} << QString() << false;
    QTest::newRow("address") << QList{movie} << movie.toString() << false;
    QTest::newRow("text") << QList<QUrl>() << movie.toString() << false;
    QTest::newRow("channel list") << QList{QUrl::fromLocalFile(m_nginx->documentRoot()
                                                               + u"/list.m3u")}
                                  << QString() << true;
}

void AppWindowTest::dropsPlay()
{
    QFETCH(const QList<QUrl>, urls);
    QFETCH(const QString, text);
    QFETCH(const bool, isList);
    QMimeData data;
    if (!urls.isEmpty())
        data.setUrls(urls);
    if (!text.isEmpty())
        data.setText(text);
    QVERIFY(m_world->drop(data));
    if (isList)
        QVERIFY(becomesTrue([&] { return m_world->channels().count() == 1; }));
    else
        QVERIFY(m_world->playsTo(0.2));
}

void AppWindowTest::filePanelsAskForWhatIsWantedNow()
{
    // The same panel of Qt serves them all.
    QStringList titles;
    for (const auto key : {Qt::Key_O, Qt::Key_I, Qt::Key_O}) {
        m_world->press(key, Qt::ControlModifier);
        QVERIFY(becomesTrue([&] { return m_world->isPopupOpen(); }));
        titles << m_world->panels().title();
        QVERIFY2(becomesTrue([&] { return isShown(titles.last()); }), qPrintable(titles.last()));
        QVERIFY2(isShown(m_world->panels().nameFilters().first()), qPrintable(titles.last()));
        m_world->press(Qt::Key_Escape);
        QVERIFY(becomesTrue([&] { return !m_world->isPopupOpen(); }));
    }
    QVERIFY(titles.at(0) != titles.at(1));
}

void AppWindowTest::hiddenFieldsTakeNoKeys_data()
{
    using Act = std::function<void(AppWorld &)>;
    using Text = std::function<QString(AppWorld &)>;
    QTest::addColumn<Act>("focus");
    QTest::addColumn<Text>("text");
    QTest::addColumn<Act>("hide");
    const auto rows = [](const Act &focus, const Text &text) {
        return [=](const char *name, const Act &hide) {
            QTest::newRow(name) << focus << text << hide;
        };
    };
    const auto address = rows([](AppWorld &world) { world.press(Qt::Key_L, Qt::ControlModifier); },
                              [](AppWorld &world) { return world.shell().addressText(); });
    address("another section", [](AppWorld &world) {
        world.shell().setSidebarSection(MainWindowModel::PlayerSidebarSection::localM3U);
    });
    address("no sidebar", [](AppWorld &world) { world.shell().setSidebarVisible(false); });
    address("full screen", [](AppWorld &world) { world.shell().setIsFullScreen(true); });

    const QString list = m_nginx->documentRoot() + u"/list.m3u";
    const auto channels = rows(
        [list](AppWorld &world) {
            world.open(list);
            QVERIFY(becomesTrue([&] { return world.channels().count() > 0; }));
            world.press(Qt::Key_F, Qt::ControlModifier);
        },
        [](AppWorld &world) { return world.channels().filterText(); });
    channels("cleared channels", [](AppWorld &world) { world.shell().clearNetwork(); });
    channels("failed import", [](AppWorld &world) {
        world.open(u"/nowhere.m3u"_s);
        QVERIFY(becomesTrue([&] { return world.channels().count() == 0; }));
    });

    const auto library = rows(
        [](AppWorld &world) {
            world.library().save(QUrl(u"http://h/a"_s), u"host.example/a"_s);
            world.press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
        },
        [](AppWorld &world) { return world.librarySection().list()->filterText(); });
    library("emptied library", [](AppWorld &world) { world.library().setEntries({}); });
    library("last link deleted", [](AppWorld &world) {
        QVERIFY(becomesTrue([&] { return world.librarySection().list()->selectedRow() == 0; }));
        world.press(Qt::Key_Delete);
        QVERIFY(becomesTrue([&] { return world.isPopupOpen(); }));
        world.press(Qt::Key_Tab);
        world.press(Qt::Key_Return);
        QVERIFY(world.library().entries().isEmpty());
        QVERIFY(becomesTrue([&] { return !world.isPopupOpen(); }));
    });
}

void AppWindowTest::hiddenFieldsTakeNoKeys()
{
    QFETCH(const std::function<void(AppWorld &)>, focus);
    QFETCH(const std::function<QString(AppWorld &)>, text);
    QFETCH(const std::function<void(AppWorld &)>, hide);
    focus(*m_world);
    m_world->type(u"host.example/a"_s);
    QCOMPARE(text(*m_world), u"host.example/a"_s);
    hide(*m_world);
    const QString left = text(*m_world);
    m_world->type(u"b"_s);
    QCOMPARE(text(*m_world), left);
    // They are the player's again.
    m_world->press(Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(m_world->player().volume(), 0.99);
}

void AppWindowTest::enterKeepsWhatIsNoAddress()
{
    m_world->press(Qt::Key_L, Qt::ControlModifier);
    m_world->type(u"no address"_s);
    m_world->press(Qt::Key_Return);
    QVERIFY(!m_world->player().errorMessage().isEmpty());
    m_world->type(u"f"_s);
    QCOMPARE(m_world->shell().addressText(), u"no addressf"_s);
    QVERIFY(!m_world->shell().isFullScreen());

    m_world->shell().setAddressText(m_nginx->url(u"/movie.mp4"_s).toString());
    m_world->press(Qt::Key_Return);
    QVERIFY(m_world->playsTo(0.2));
    m_world->press(Qt::Key_Space);
    QVERIFY(!m_world->player().isPlaying());
}

void AppWindowTest::searchIsReachedFromThePicture()
{
    m_world->open(m_nginx->documentRoot() + u"/list.m3u");
    QVERIFY(becomesTrue([&] { return m_world->channels().count() == 1; }));
    for (const bool isFullScreen : {false, true}) {
        m_world->shell().setSidebarVisible(false);
        m_world->shell().setIsFullScreen(isFullScreen);
        m_world->press(Qt::Key_F, Qt::ControlModifier);
        QVERIFY(m_world->shell().sidebarShown());
        // In place of what was searched for before.
        m_world->type(u"on"_s);
        QCOMPARE(m_world->channels().filterText(), u"on"_s);
        m_world->press(Qt::Key_Return);
        QVERIFY(becomesTrue([&] { return m_world->shell().currentChannel() == 0; }));
    }
    keepPicture(m_world->window(), u"search"_s);
}

void AppWindowTest::errorOverThePictureIsClosed()
{
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.2));
    m_world->shell().setIsFullScreen(true);
    m_world->open(u"<nonsense>"_s);
    const auto *const notice = m_world->window().findChild<QQuickItem *>(u"pictureError"_s);
    QVERIFY(notice);
    QVERIFY(becomesTrue([&] { return notice->parentItem()->opacity() == 1; }));
    keepPicture(m_world->window(), u"error"_s);
    const QPointF close = notice->mapToScene({notice->width() - 20, 20});
    QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, close.toPoint());
    QVERIFY(becomesTrue([&] { return m_world->player().errorMessage().isEmpty(); }));
    QVERIFY(m_world->player().isPlaying());
}

void AppWindowTest::programStartsPlaysAndQuits()
{
    m_world.reset();
    const QTemporaryDir home;
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        qputenv(variable, home.path().toLocal8Bit());
    ChildProcess program;
    QVERIFY(program.start(QStringLiteral(LUMARO_PROGRAM), {m_movie}, {}));
    const QString title = QFileInfo(m_movie).fileName();
    QString window;
    QVERIFY(becomesTrue([&] {
        window = outputOf(u"xdotool"_s, {u"search"_s, u"--name"_s, u"^"_s + title});
        return !window.isEmpty();
    }));
    const auto screen = [&home] {
        const QString file = home.filePath(u"screen.png"_s);
        outputOf(u"import"_s, {u"-window"_s, u"root"_s, file});
        return QImage(file);
    };
    const QImage first = screen();
    QVERIFY(becomesTrue([&] {
        const QImage now = screen();
        return !now.isNull() && now != first;
    }));
    outputOf(u"xdotool"_s, {u"windowfocus"_s, window.section(u'\n', -1), u"key"_s, u"ctrl+q"_s});
    QVERIFY(program.waitForFinished(20s));
    QCOMPARE(program.exitCode(), 0);
}

void AppWindowTest::programSaysWhatItIs()
{
    m_world.reset();
    QVERIFY(outputOf(QStringLiteral(LUMARO_PROGRAM), {u"--version"_s}).startsWith(u"lumaro "_s));
    QVERIFY(
        outputOf(QStringLiteral(LUMARO_PROGRAM), {u"--help"_s}).contains(u"[file...|address]"_s));
}

LUMARO_APP_TEST_MAIN(AppWindowTest)
#include "tst_app_window.moc"
