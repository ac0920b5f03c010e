#include "tests/e2e/soak/SoakActions.h"

#include "display/PortraitDisplayMode.h"
#include "platform/qt/QuickFilePanels.h"

#include <QQuickItem>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

const QString well;

template <typename T>
QString openOneOf(SoakWorld &world, const QList<T> &list)
{
    world.app().open(world.dice().oneOf(list));
    return well;
}

QString playChannel(SoakWorld &world)
{
    const int count = int(world.app().player().playlist().size());
    if (count > 0)
        world.app().shell().playChannel(world.dice().below(count));
    return well;
}

QString foldGroup(SoakWorld &world)
{
    ChannelListModel &channels = world.app().channels();
    if (channels.rowCount() > 0)
        channels.toggleGroup(0);
    return well;
}

QString seek(SoakWorld &world)
{
    PlayerModel &player = world.app().player();
    if (world.dice().hits(50))
        player.seek(player.duration() * world.dice().fraction());
    else
        player.skip(world.dice().below(60) - 30);
    return well;
}

QString changeView(SoakWorld &world)
{
    MainWindowModel &shell = world.app().shell();
    shell.setSidebarVisible(world.dice().hits(70));
    shell.setSidebarSection(world.dice().hits(50)
                                ? MainWindowModel::PlayerSidebarSection::network
                                : MainWindowModel::PlayerSidebarSection::localM3U);
    shell.setIsFullScreen(world.dice().hits(20));
    world.app().window().resize(700 + world.dice().below(500), 450 + world.dice().below(300));
    world.app().downloads().setPanelShown(world.dice().hits(30));
    return well;
}

/// The window in which a dialog or another popup has the keyboard; null for none.
QWindow *windowWithPopup()
{
    for (QWindow *const window : QGuiApplication::topLevelWindows()) {
        const auto *const view = qobject_cast<QQuickWindow *>(window);
        const QQuickItem *item = view ? view->activeFocusItem() : nullptr;
        for (; item; item = item->parentItem()) {
            if (item->inherits("QQuickPopupItem"))
                return window;
        }
    }
    return nullptr;
}

QString showFinder(SoakWorld &world)
{
    world.app().showFinder();
    return world.app().finderController().isShown() ? well
                                                    : u"The stream finder does not appear."_s;
}

QString closeTab(SoakWorld &world)
{
    world.tabs().closeRow(world.dice().below(world.tabs().count()));
    return well;
}

QString addTab(SoakWorld &world)
{
    // As many as a user has at once.
    if (world.tabs().count() >= 6)
        closeTab(world);
    world.tabs().addTab(world.dice().oneOf(world.pages()));
    return well;
}

QString browse(SoakWorld &world)
{
    SnifferManager &tab = *world.tabs().selectedTab();
    switch (world.dice().below(7)) {
    case 0:
        tab.goBack();
        break;
    case 1:
        tab.goForward();
        break;
    case 2:
        tab.reload();
        break;
    case 3:
        tab.stopLoading();
        break;
    case 4:
        tab.clearAddress();
        break;
    case 5:
        world.app().finder().toggleBlocking();
        break;
    default:
        world.app().finder().toggleStar();
    }
    return well;
}

QString useStream(SoakWorld &world)
{
    SnifferDetectedStreamsModel &streams = *world.app().finder().streams();
    if (streams.count() == 0)
        return well;
    const int row = world.dice().below(streams.count());
    switch (world.dice().below(4)) {
    case 0:
        streams.play(row);
        break;
    case 1:
        streams.download(row);
        break;
    case 2:
        streams.stopDownload(row);
        break;
    default:
        streams.save(row);
    }
    return well;
}

QString saveLink(SoakWorld &world)
{
    LocalM3UModel &library = world.app().librarySection();
    if (world.dice().hits(50) && library.canSaveCurrent())
        library.saveCurrent();
    else
        world.app().library().save(QUrl(world.dice().oneOf(world.addresses())), u"Link"_s);
    return well;
}

QString changeLibrary(SoakWorld &world)
{
    LocalM3UModel &library = world.app().librarySection();
    const int rows = library.list()->matchCount();
    switch (world.dice().below(4)) {
    case 0:
        library.history()->undo();
        break;
    case 1:
        library.history()->redo();
        break;
    case 2:
        if (rows > 0)
            library.play(world.dice().below(rows));
        break;
    default:
        if (rows > 0)
            library.remove(world.dice().below(rows));
        library.agree();
    }
    return well;
}

QString startRecording(SoakWorld &world)
{
    RecordingModel &recording = world.app().recording();
    const PlayerRecordingController &controller = *recording.controller();
    if (controller.state() != PlayerRecordingState::idle)
        return well;
    recording.dismissNotice();
    world.app().downloads().setPanelShown(false);
    if (!world.settles([] { return !windowWithPopup(); }))
        return u"A popup keeps the keyboard."_s;
    if (world.dice().hits(70))
        recording.startNormal();
    else
        recording.startHd();
    QuickFilePanels &panels = world.app().panels();
    // It asks where to save, unless there is a reason not to begin.
    if (!world.settles([&] { return panels.isOpen() || recording.noticeIsError(); }))
        return u"Nobody asks where to save the recording."_s;
    if (recording.noticeIsError())
        return well;
    // Whichever window is in front shows it. Without a window manager nobody gives that the
    // keyboard when another one is hidden.
    QWindow *window = nullptr;
    const bool hasKeyboard = world.settles([&] {
        window = windowWithPopup();
        if (!window && world.app().finderController().isShown())
            world.app().showFinder();
        else if (!window)
            world.app().window().requestActivate();
        return window != nullptr;
    });
    if (!hasKeyboard)
        return u"The panel does not get the keyboard."_s;
    QTest::keyClick(window, world.dice().hits(80) ? Qt::Key_Return : Qt::Key_Escape);
    if (!world.settles([&] { return !panels.isOpen(); }))
        return u"The panel does not take the answer."_s;
    return world.settles([&] { return controller.state() != PlayerRecordingState::preparing; })
        ? well
        : u"The recording does not begin, and no reason is told."_s;
}

QString stopRecording(SoakWorld &world)
{
    world.app().recording().stop();
    return well;
}

} // namespace

QList<SoakAction> soakActions()
{
    const auto doing = [](const auto &act) {
        return [act](SoakWorld &world) {
            act(world);
            return well;
        };
    };
    return {
        {u"open a file"_s, [](auto &world) { return openOneOf(world, world.files()); }},
        {u"start a recording"_s, &startRecording},
        {u"seek"_s, &seek},
        {u"open the live stream"_s,
         doing([](auto &world) { world.app().open(world.feed().url().toString()); })},
        {u"stall the live stream"_s, doing([](auto &world) { world.feed().stall(); })},
        {u"stop the recording"_s, &stopRecording},
        {u"resume the live stream"_s, doing([](auto &world) { world.feed().resume(); })},
        {u"open an address"_s, [](auto &world) { return openOneOf(world, world.addresses()); }},
        {u"open a list"_s, [](auto &world) { return openOneOf(world, world.lists()); }},
        {u"search the list"_s, doing([](auto &world) {
             world.app().channels().setFilterText(world.dice().oneOf(
                 QStringList{u""_s, u"n"_s, u"News"_s, u"chan"_s, u"nothing has this"_s}));
         })},
        {u"fold a category"_s, &foldGroup},
        {u"play a channel"_s, &playChannel},
        {u"pause or play"_s, doing([](auto &world) { world.app().player().togglePlayback(); })},
        {u"change the volume"_s, doing([](auto &world) {
             world.app().player().setVolume(world.dice().fraction());
             if (world.dice().hits(20))
                 world.app().player().toggleMute();
         })},
        {u"change the display mode"_s, doing([](auto &world) {
             world.app().shell().setDisplayMode(allPortraitDisplayModes.at(
                 size_t(world.dice().below(int(allPortraitDisplayModes.size())))));
         })},
        {u"change the window"_s, &changeView},
        {u"save a link"_s, &saveLink},
        {u"change the library"_s, &changeLibrary},
        {u"download"_s, doing([](auto &world) {
             world.downloads().start(world.dice().oneOf(world.streams()), u"Stream"_s);
         })},
        {u"stop a download"_s,
         doing([](auto &world) { world.downloads().stop(world.dice().oneOf(world.streams())); })},
        {u"show the finder"_s, &showFinder},
        {u"open a tab"_s, &addTab},
        {u"go to a page"_s, doing([](auto &world) {
             world.tabs().selectedTab()->navigate(world.dice().oneOf(world.pages()));
         })},
        {u"browse"_s, &browse},
        {u"use a stream"_s, &useStream},
        {u"show another tab"_s, doing([](auto &world) { world.tabs().selectNext(1); })},
        {u"close a tab"_s, &closeTab},
        {u"hide the finder"_s,
         doing([](auto &world) { world.app().finderController().windowShouldClose(); })},
        {u"play a site's video"_s, doing([](auto &world) {
             world.app().open(world.dice().oneOf(
                 QStringList{u"https://youtu.be/clip1"_s, u"https://youtu.be/clip2"_s,
                             u"https://ok.ru/video/12345"_s, u"https://ok.ru/video/67890"_s}));
         })},
        {u"stop"_s, doing([](auto &world) { world.app().player().stop(); })},
    };
}

} // namespace lumaro
