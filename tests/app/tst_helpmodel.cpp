#include "app/HelpModel.h"
#include "app/LocalM3UCommands.h"
#include "app/LocalM3UModel.h"
#include "app/MenuCommands.h"
#include "tests/app/ShellWorld.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

struct World : ShellWorld
{
    LocalM3UStore library{defaults, scheduler};
    LocalM3UModel section{{library, player, shell, panels, scheduler, scheduler}};
    MenuCommands menus{player, shell, downloads, recent};
    LocalM3UCommands libraryMenu{section};
    HelpModel help{menus, libraryMenu, u"1.2.3"_s};

    QStringList keysUnder(const QString &heading)
    {
        help.prepareShortcuts();
        QStringList keys;
        for (const TextRows::Row &row : help.shortcuts()->rows()) {
            if (heading.isEmpty() || row.section == heading)
                keys += row.text.split(u" / "_s);
        }
        return keys;
    }
};

/// The key sequences that the views themselves take.
QSet<QString> sequencesIn(const QString &folder)
{
    static const QRegularExpression shortcut(u"sequences?: (?:\\[([^]]*)\\]|(\"[^\"]*\"))"_s);
    static const QRegularExpression text(u"\"([^\"]*)\""_s);
    QSet<QString> found;
    QDirIterator files(QStringLiteral(LUMARO_SOURCES "/") + folder, {u"*.qml"_s}, QDir::Files);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString source = QString::fromUtf8(file.readAll());
        for (const auto &match : shortcut.globalMatch(source)) {
            for (const auto &sequence : text.globalMatch(match.captured(0)))
                found.insert(sequence.captured(1));
        }
    }
    return found;
}

} // namespace

class HelpModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sheetHasEveryShortcut_data();
    void sheetHasEveryShortcut();
    void sheetHasTheMenus();
    void noKeyStandsTwiceInTheMainWindow();
    void sheetSaysWhatCommandsAreCalledNow();
    void carriesTheLicence();
};

void HelpModelTest::sheetHasEveryShortcut_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("heading"); // empty for all
    QTest::addColumn<int>("atLeast");
    QTest::newRow("main window") << u"app"_s << QString() << 8;
    QTest::newRow("lists") << u"playlist"_s << u"Channels and Links"_s << 1;
    QTest::newRow("stream finder") << u"finder"_s << u"Stream Finder"_s << 15;
}

void HelpModelTest::sheetHasEveryShortcut()
{
    QFETCH(const QString, folder);
    QFETCH(const QString, heading);
    QFETCH(const int, atLeast);
    World world;
    const QStringList listed = world.keysUnder(heading);
    const QSet<QString> taken = sequencesIn(folder);
    QVERIFY2(taken.size() >= atLeast, "the views' shortcuts were not found");
    for (const QString &sequence : taken) {
        // They are one row; Backtab is what Shift and Tab are to Qt.
        if (sequence.contains(u"Media"_s) || sequence.contains(u"Backtab"_s))
            continue;
        QVERIFY2(listed.contains(sequence), qPrintable(sequence));
    }
}

void HelpModelTest::sheetHasTheMenus()
{
    World world;
    const QStringList listed = world.keysUnder({});
    for (const auto &menu : {world.menus.file(), world.menus.playback(), world.menus.view(),
                             world.menus.help(), world.libraryMenu.all()}) {
        for (const MenuCommand *command : menu)
            QVERIFY2(command->shownKeys().isEmpty() || listed.contains(command->shownKeys()),
                     qPrintable(command->title()));
    }
}

void HelpModelTest::noKeyStandsTwiceInTheMainWindow()
{
    World world;
    world.help.prepareShortcuts();
    QSet<QString> seen;
    for (const TextRows::Row &row : world.help.shortcuts()->rows()) {
        // The finder has a window of its own, and lists have the keys while they have the focus.
        if (row.section == u"Stream Finder" || row.section == u"Channels and Links")
            continue;
        for (const QString &keys : row.text.split(u" / "_s)) {
            QVERIFY2(!seen.contains(keys), qPrintable(keys));
            seen.insert(keys);
        }
    }
}

void HelpModelTest::sheetSaysWhatCommandsAreCalledNow()
{
    World world;
    const auto titleOf = [&world](const QString &keys) {
        world.help.prepareShortcuts();
        for (const TextRows::Row &row : world.help.shortcuts()->rows()) {
            if (row.text == keys)
                return row.title;
        }
        return QString();
    };
    QCOMPARE(titleOf(u"Ctrl+M"_s), u"Mute"_s);
    world.player.toggleMute();
    QCOMPARE(titleOf(u"Ctrl+M"_s), u"Unmute"_s);
    QCOMPARE(titleOf(u"Ctrl+O"_s), u"Open Media"_s);
}

void HelpModelTest::carriesTheLicence()
{
    const World world;
    QVERIFY(world.help.licence().contains(u"GNU GENERAL PUBLIC LICENSE"_s));
    QCOMPARE(world.help.version, u"1.2.3"_s);
}

QTEST_GUILESS_MAIN(HelpModelTest)
#include "tst_helpmodel.moc"
