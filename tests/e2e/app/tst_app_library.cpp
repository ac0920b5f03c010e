#include "platform/qt/FileUserDefaults.h"
#include "playlist/PlaylistEntryCoding.h"
#include "tests/e2e/app/AppWorld.h"

#include <QDropEvent>
#include <QMimeData>
#include <QQuickItem>
#include <QScopeGuard>

#include <csignal>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

/// With logos that nobody serves, for where they are not shown.
PlaylistEntries links(int count, bool withLogos = true)
{
    QList<PlaylistEntry> links;
    for (int i = 0; i < count; ++i)
        links.append({.id = QUuid::createUuid(),
                      .name = u"Link %1"_s.arg(i),
                      .url = QUrl(u"http://host.example/live/%1.m3u8"_s.arg(i)),
                      .logoURL = withLogos
                          ? std::optional(QUrl(u"http://host.example/logos/%1.png"_s.arg(i)))
                          : std::nullopt,
                      .groupTitle = u"Group"_s,
                      .countryCode = u"TR"_s});
    return PlaylistEntries::fromList(links);
}

QStringList names(const PlaylistEntries &entries)
{
    QStringList names;
    for (qsizetype i = 0; i < entries.size(); ++i)
        names.append(entries.name(i).toString());
    return names;
}

/// The program itself with folders of its own, driven by keys.
class Program
{
public:
    Program()
    {
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
            qputenv(variable, m_home.path().toLocal8Bit());
    }

    bool start(const QStringList &arguments)
    {
        return m_process.start(QStringLiteral(LUMARO_PROGRAM), arguments, {}).has_value();
    }
    ChildProcess &process() { return m_process; }
    QString homePath(const QString &name) const { return m_home.filePath(name); }

    /// The window with this title; empty while there is none.
    static QString window(const QString &title)
    {
        return outputOf(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u'^' + title})
            .section(u'\n', -1);
    }

    QString libraryFile() const
    {
        return m_home.filePath(u"lumaro/"_s + LocalM3UStore::defaultsKey);
    }
    void setLibrary(const PlaylistEntries &entries) const
    {
        FileUserDefaults defaults(m_home.filePath(u"lumaro"_s));
        (void)defaults.setData(LocalM3UStore::defaultsKey, encodeEntries(entries));
    }
    /// Empty when it cannot be read.
    std::optional<PlaylistEntries> library() const
    {
        QFile file(libraryFile());
        return file.open(QIODevice::ReadOnly) ? decodeEntries(file.readAll()) : std::nullopt;
    }
    /// Another number after each time the library was stored.
    qint64 libraryVersion() const
    {
        struct stat status{};
        const bool isThere = stat(qPrintable(libraryFile()), &status) == 0;
        return isThere ? status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec : 0;
    }

private:
    QTemporaryDir m_home;
    ChildProcess m_process;
};

/// Saves what plays and takes it back, again and again: every step stores another library.
class Typist
{
public:
    explicit Typist(const QString &title)
        : m_title(title)
    {
    }
    ~Typist() { stop(); }
    Typist(const Typist &) = delete;
    Typist &operator=(const Typist &) = delete;

    /// A window that is not quite there yet takes no focus, which ends the typing.
    void keepTyping()
    {
        if (m_process.isRunning())
            return;
        QStringList keys{u"windowfocus"_s, Program::window(m_title), u"key"_s, u"--delay"_s,
                         u"8"_s};
        for (int i = 0; i < 100; ++i)
            keys << u"ctrl+d"_s << u"ctrl+z"_s;
        (void)m_process.start(u"xdotool"_s, keys, {});
    }
    void stop()
    {
        m_process.stop();
        // They may be held down now, for whichever window comes next.
        outputOf(u"xdotool"_s, {u"keyup"_s, u"d"_s, u"keyup"_s, u"z"_s, u"keyup"_s, u"ctrl"_s});
    }

private:
    QString m_title;
    ChildProcess m_process;
};

/// A file system of a few hundred kilobytes.
class SmallDisk
{
public:
    SmallDisk()
        : m_isMounted(!outputOf(u"sh"_s,
                                {u"-c"_s,
                                 u"mount -t tmpfs -o size=400k tmpfs '%1' && echo yes"_s.arg(
                                     m_folder.path())})
                           .isEmpty())
    {
    }
    ~SmallDisk()
    {
        if (m_isMounted)
            outputOf(u"umount"_s, {u"-l"_s, m_folder.path()});
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    bool isMounted() const { return m_isMounted; }
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
    bool m_isMounted;
};

} // namespace

/// The Local M3U library in the real application: keys, files, and what may happen to them.
class AppLibraryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { m_world.reset(); }

    void keysAddEditAndDelete();
    void savesWhatPlays();
    void exportsByKeys();
    void closedFormTakesItsFilePanelAlong();
    void menuGivesTheKeyboardBack_data();
    void menuGivesTheKeyboardBack();
    void fileDroppedOnTheLibraryBecomesIt();
    void killedWhileWritingKeepsWholeLibraries();
    void fullDiskKeepsTheStoredLibrary();
    void secondStartHandsOver();
    void oneOfManyStartsRuns();

private:
    void openWorld() { m_world = std::make_unique<AppWorld>(); }
    /// A dialog that is still closing keeps the keys to itself.
    bool pressUntil(Qt::Key key, Qt::KeyboardModifiers modifiers,
                    const std::function<bool()> &condition)
    {
        return becomesTrue([&] {
            if (!condition())
                m_world->press(key, modifiers);
            return condition();
        });
    }
    /// Fading ones too.
    bool shows(const char *className)
    {
        QList<QQuickItem *> items{m_world->window().contentItem()};
        while (!items.isEmpty()) {
            const QQuickItem *item = items.takeLast();
            if (item->isVisible() && item->inherits(className))
                return true;
            items += item->childItems();
        }
        return false;
    }
    QStringList shownNames() { return names(m_world->library().entries()); }

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    QString m_movie;
    std::unique_ptr<AppWorld> m_world;
};

void AppLibraryTest::initTestCase()
{
    m_movie = valueOrFail(m_media.path(Fixture::Movie));
    QVERIFY(!m_movie.isEmpty());
}

void AppLibraryTest::keysAddEditAndDelete()
{
    openWorld();
    LocalM3UModel &section = m_world->librarySection();
    const auto add = [this](const QString &name) {
        QVERIFY(pressUntil(Qt::Key_N, Qt::ControlModifier,
                           [&] { return m_world->librarySection().editor()->isOpen(); }));
        m_world->type(name);
        m_world->press(Qt::Key_Tab);
        m_world->type(u"http://h/"_s + name);
        m_world->press(Qt::Key_Return);
        QVERIFY(becomesTrue([&] { return shownNames().value(0) == name; }));
    };
    add(u"one"_s);
    add(u"two"_s);
    QVERIFY(m_world->shell().showsLocalM3U());

    // In the search field the keys are for the list.
    QVERIFY(becomesTrue([&] {
        section.list()->selectRow(-1);
        m_world->press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
        m_world->press(Qt::Key_Down);
        return section.list()->selectedRow() == 0;
    }));
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_F2);
    QVERIFY(becomesTrue([&] { return section.editor()->isOpen(); }));
    QCOMPARE(section.editor()->name(), u"one"_s);
    m_world->type(u"!"_s);
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return shownNames() == QStringList{u"two"_s, u"one!"_s}; }));

    // The form gives the keyboard back to it.
    QVERIFY(pressUntil(Qt::Key_Z, Qt::ControlModifier,
                       [&] { return shownNames() == QStringList{u"two"_s, u"one"_s}; }));
    m_world->press(Qt::Key_Delete);
    QVERIFY(becomesTrue([&] { return section.questionText().contains(u"\"one\""); }));
    // At first Cancel has the focus.
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return section.questionText().isEmpty(); }));
    QCOMPARE(shownNames().size(), 2);
    QVERIFY(pressUntil(Qt::Key_Delete, {}, [&] { return !section.questionText().isEmpty(); }));
    m_world->press(Qt::Key_Tab);
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return shownNames() == QStringList{u"two"_s}; }));
}

void AppLibraryTest::savesWhatPlays()
{
    openWorld();
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.2));
    m_world->press(Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(shownNames(), QStringList{QFileInfo(m_movie).fileName()});
    m_world->press(Qt::Key_K, Qt::ControlModifier);
    QVERIFY(m_world->player().currentURL().isEmpty());

    m_world->press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    m_world->press(Qt::Key_Return);
    QVERIFY(m_world->playsTo(0.2));
}

void AppLibraryTest::exportsByKeys()
{
    const QTemporaryDir home;
    const auto restore = qScopeGuard([before = qgetenv("HOME")] { qputenv("HOME", before); });
    qputenv("HOME", home.path().toLocal8Bit());
    QVERIFY(QDir(home.path()).mkpath(u"Documents"_s));
    openWorld();
    m_world->library().setEntries(links(2));
    const auto exported = [&home](const QString &name) {
        QFile file(home.filePath(u"Documents/"_s + name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().count('\n') : 0;
    };
    // The panel has the name selected once it is open.
    const auto nameAndExport = [&] {
        QVERIFY(pressUntil(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier, [&] {
            const QQuickItem *focus = m_world->window().activeFocusItem();
            return focus && focus->objectName() == u"fileNameTextField";
        }));
        m_world->type(u"my list"_s);
        m_world->press(Qt::Key_Return);
    };
    nameAndExport();
    QVERIFY(becomesTrue([&] { return exported(u"my list.m3u"_s) == 5; }));

    // The same name again, at first not agreed to.
    m_world->library().setEntries(links(1));
    nameAndExport();
    const auto focusIs = [&](const QString &name) {
        return becomesTrue([&] {
            const QQuickItem *focus = m_world->window().activeFocusItem();
            return focus && focus->property("text") == name;
        });
    };
    QVERIFY(focusIs(u"Cancel"_s));
    m_world->press(Qt::Key_Return);
    QVERIFY(focusIs(u"my list.m3u"_s));
    QCOMPARE(exported(u"my list.m3u"_s), 5);
    m_world->press(Qt::Key_Return);
    QVERIFY(focusIs(u"Cancel"_s));
    m_world->press(Qt::Key_Tab);
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return exported(u"my list.m3u"_s) == 3; }));
}

void AppLibraryTest::closedFormTakesItsFilePanelAlong()
{
    openWorld();
    LocalM3UEditor &form = *m_world->librarySection().editor();
    form.beginAdding(u"http://host.example/live.m3u8"_s);
    form.chooseLogoFile();
    QVERIFY(becomesTrue([&] { return m_world->isPopupOpen(); }));
    form.cancel();
    QVERIFY(!m_world->panels().isOpen());
    QVERIFY(becomesTrue([&] { return !m_world->isPopupOpen(); }));
}

void AppLibraryTest::menuGivesTheKeyboardBack_data()
{
    QTest::addColumn<int>("item");
    QTest::newRow("edit") << 2;
    QTest::newRow("delete") << 3;
}

void AppLibraryTest::menuGivesTheKeyboardBack()
{
    QFETCH(const int, item);
    openWorld();
    m_world->library().setEntries(links(3, false));
    m_world->press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    m_world->press(Qt::Key_Down);
    const auto &list = *m_world->librarySection().list();
    QCOMPARE(list.selectedRow(), 0);
    m_world->press(Qt::Key_F10, Qt::ShiftModifier);
    QVERIFY(becomesTrue([&] { return m_world->isPopupOpen(); }));
    QVERIFY(shows("QQuickMenuItem"));
    for (int i = 0; i < item; ++i)
        m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Return);
    const auto isAsked = [&] {
        return !m_world->librarySection().questionText().isEmpty()
            || m_world->librarySection().editor()->isOpen();
    };
    QVERIFY(isAsked());
    // By then the menu is gone.
    QVERIFY(becomesTrue([&] { return m_world->isPopupOpen() && !shows("QQuickMenuItem"); }));
    m_world->press(Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !shows("QQuickPopupItem"); }));
    QVERIFY(!isAsked());
    m_world->press(Qt::Key_Down);
    QCOMPARE(list.selectedRow(), 1);
}

void AppLibraryTest::fileDroppedOnTheLibraryBecomesIt()
{
    openWorld();
    m_world->library().setEntries(links(3, false));
    m_world->press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"list.m3u"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#EXTINF:-1,One\nhttp://h/1\n#EXTINF:-1,Two\nhttp://h/2\n");
    file.close();

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file.fileName())});
    const auto drop = [this, &data] {
        const QPoint onTheList(100, 300);
        QDragEnterEvent enter(onTheList, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&m_world->window(), &enter);
        keepPicture(m_world->window(), u"drop"_s);
        QDropEvent end(onTheList, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&m_world->window(), &end);
        return enter.isAccepted() && end.isAccepted();
    };
    // While something is asked, it is about what is there.
    m_world->librarySection().removeAll();
    QVERIFY(becomesTrue([&] { return m_world->isPopupOpen(); }));
    QVERIFY(!drop());
    QVERIFY(!m_world->player().isLoading());
    QVERIFY(!m_world->drop(data));
    QVERIFY(!m_world->player().isLoading());
    m_world->press(Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !m_world->isPopupOpen(); }));

    // The question is faded out then.
    QVERIFY(becomesTrue([&] { return drop(); }));
    QVERIFY(becomesTrue([&] { return shownNames() == QStringList{u"One"_s, u"Two"_s}; }));
    QVERIFY(m_world->shell().showsLocalM3U());
    m_world->press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(shownNames().size(), 3);
}

void AppLibraryTest::killedWhileWritingKeepsWholeLibraries()
{
    constexpr int rounds = 8;
    Program program;
    const PlaylistEntries library = links(5000);
    program.setLibrary(library);
    const QString title = QFileInfo(m_movie).fileName();
    int storedBefore = 0;
    for (int round = 0; round < rounds; ++round) {
        QVERIFY(program.start({m_movie}));
        QVERIFY(becomesTrue([&] { return !Program::window(title).isEmpty(); }));
        Typist typist(title);
        qint64 version = program.libraryVersion();
        for (int stores = 0; stores <= round; ++stores) {
            QVERIFY(becomesTrue([&] {
                typist.keepTyping();
                return program.libraryVersion() != version;
            }));
            version = program.libraryVersion();
        }
        program.process().sendSignal(SIGKILL);
        QVERIFY(program.process().waitForFinished(20s));
        typist.stop();
        QVERIFY(becomesTrue([&] { return Program::window(title).isEmpty(); }));

        const auto stored = program.library();
        QVERIFY(stored);
        const qsizetype more = stored->size() - library.size();
        QVERIFY(more == 0 || more == 1);
        QCOMPARE(names(*stored).sliced(more), names(library));
        storedBefore += int(more);
        program.setLibrary(library);
    }
    QVERIFY(QDir(program.homePath(u"lumaro"_s)).entryList({u"* (unreadable*"_s}).isEmpty());
    qInfo("After %d kills the new library was stored %d times, the old one %d times.", rounds,
          storedBefore, rounds - storedBefore);
}

void AppLibraryTest::fullDiskKeepsTheStoredLibrary()
{
    const SmallDisk disk;
    if (!disk.isMounted())
        QSKIP("Mounting a small file system is not permitted here.");
    QtScheduler scheduler;
    FileUserDefaults defaults(disk.path());
    const PlaylistEntries small = links(500);
    const PlaylistEntries large = links(5000);
    {
        LocalM3UStore store(defaults, scheduler);
        store.setEntries(small);
        store.persist();
    }
    LocalM3UStore store(defaults, scheduler);
    QCOMPARE(store.entries(), small);
    store.setEntries(large);
    store.persist();
    QVERIFY(becomesTrue([&] { return !store.errorMessage().isEmpty(); }));
    QCOMPARE(store.errorMessage(),
             u"Local M3U could not be saved. There is no space left on the disk."_s);
    QCOMPARE(store.entries(), large);
    QCOMPARE(LocalM3UStore(defaults, scheduler).entries(), small);
    // What could not be written has left nothing behind.
    QCOMPARE(QDir(disk.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);

    store.setEntries(small.replacing(0, 1, {}));
    store.persist();
    QVERIFY(becomesTrue([&] { return store.errorMessage().isEmpty(); }));
    QCOMPARE(LocalM3UStore(defaults, scheduler).entries().size(), small.size() - 1);
}

void AppLibraryTest::secondStartHandsOver()
{
    Program program;
    program.setLibrary(links(3));
    QVERIFY(program.start({}));
    QVERIFY(becomesTrue([&] { return !Program::window(u"Lumaro"_s).isEmpty(); }));

    // Named as seen from the second start's own folder.
    QFile::link(m_movie, program.homePath(u"the film.mp4"_s));
    ChildProcess second;
    QVERIFY(second.start(QStringLiteral(LUMARO_PROGRAM), {u"the film.mp4"_s},
                         {.workingFolder = program.homePath({})}));
    QVERIFY(second.waitForFinished(20s));
    QCOMPARE(second.exitCode(), 0);
    QVERIFY(program.process().isRunning());
    QVERIFY(becomesTrue([&] { return !Program::window(u"the film.mp4"_s).isEmpty(); }));
    QCOMPARE(program.library()->size(), 3);

    // After a crash the next start runs itself.
    program.process().sendSignal(SIGKILL);
    QVERIFY(program.process().waitForFinished(20s));
    QVERIFY(program.start({}));
    QVERIFY(becomesTrue([&] { return !Program::window(u"Lumaro"_s).isEmpty(); }));
}

void AppLibraryTest::oneOfManyStartsRuns()
{
    const Program folders;
    std::array<ChildProcess, 4> starts;
    for (ChildProcess &start : starts)
        QVERIFY(start.start(QStringLiteral(LUMARO_PROGRAM), {}, {}));
    const auto running = [&starts] {
        return std::ranges::count_if(starts, [](ChildProcess &start) { return start.isRunning(); });
    };
    QVERIFY(becomesTrue([&] { return running() == 1; }));
    for (ChildProcess &start : starts) {
        if (!start.isRunning())
            QCOMPARE(start.exitCode(), 0);
    }
    QVERIFY(becomesTrue([&] { return !Program::window(u"Lumaro"_s).isEmpty(); }));
    QCOMPARE(running(), 1);
}

LUMARO_APP_TEST_MAIN(AppLibraryTest)
#include "tst_app_library.moc"
