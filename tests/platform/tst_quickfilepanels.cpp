#include "platform/qt/QuickFilePanels.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

Task<> save(QuickFilePanels &panels, std::stop_token stop, QList<QUrl> &chosen)
{
    const SavePanelRequest request{.title = u"Save"_s,
                                   .prompt = u"Go"_s,
                                   .proposedName = u"list.m3u"_s,
                                   .typeDescription = u"Lists"_s,
                                   .extension = u"m3u"_s};
    chosen.append((co_await panels.chooseNewFile(request, stop)).value_or(QUrl()));
}

} // namespace

class QuickFilePanelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void describesTheSavePanel();
    void asksBeforeReplacing();
    void describesTheFolderPanel();
    void showsOneAtATime();
    void withdrawsWhenStopped();
};

void QuickFilePanelsTest::describesTheSavePanel()
{
    QuickFilePanels panels;
    const QSignalSpy opened(&panels, &QuickFilePanels::openRequested);
    QList<QUrl> chosen;
    save(panels, {}, chosen);
    QCOMPARE(opened.count(), 1);
    QCOMPARE(panels.kind(), QuickFilePanels::Kind::NewFile);
    QCOMPARE(panels.title(), u"Save"_s);
    QCOMPARE(panels.prompt(), u"Go"_s);
    QCOMPARE(panels.proposedName(), u"list.m3u"_s);
    QVERIFY(QFileInfo(panels.folder().toLocalFile()).isAbsolute());
    QCOMPARE(panels.defaultSuffix(), u"m3u"_s);
    QCOMPARE(panels.nameFilters(), QStringList{u"Lists (*.m3u *.M3U)"_s});
    const QTemporaryDir folder;
    const QUrl file = QUrl::fromLocalFile(folder.filePath(u"a.m3u"_s));
    panels.accept(file);
    QCOMPARE(chosen, QList<QUrl>{file});

    save(panels, {}, chosen);
    panels.accept(QUrl(folder.filePath(u"50%#1 ü.m3u"_s)));
    QCOMPARE(chosen.value(1).toLocalFile(), folder.filePath(u"50%#1 ü.m3u"_s));

    // The next one begins where the last file went.
    save(panels, {}, chosen);
    QCOMPARE(panels.folder().toLocalFile(), folder.path());
    QCOMPARE(panels.proposedFile().toLocalFile(), folder.filePath(u"list.m3u"_s));
    panels.reject();

    panels.chooseFile(
        {.title = u"Open"_s, .prompt = {}, .typeDescription = u"Lists"_s, .extensions = {u"m3u"_s}},
        {});
    QCOMPARE(panels.kind(), QuickFilePanels::Kind::File);
    QCOMPARE(panels.proposedFile(), QUrl());
    panels.reject();
}

void QuickFilePanelsTest::asksBeforeReplacing()
{
    QuickFilePanels panels;
    const QSignalSpy opened(&panels, &QuickFilePanels::openRequested);
    const QSignalSpy asked(&panels, &QuickFilePanels::replacingAsked);
    const QTemporaryDir folder;
    QFile existing(folder.filePath(u"old list.m3u"_s));
    QVERIFY(existing.open(QIODevice::WriteOnly));
    const QUrl file = QUrl::fromLocalFile(existing.fileName());

    QList<QUrl> chosen;
    save(panels, {}, chosen);
    panels.accept(file);
    QCOMPARE(asked.count(), 1);
    QCOMPARE(panels.proposedName(), u"old list.m3u"_s);
    QCOMPARE(chosen, QList<QUrl>());
    // Back to the panel, with the same name.
    panels.chooseAnother();
    QCOMPARE(opened.count(), 2);
    QCOMPARE(panels.proposedFile(), file);
    panels.accept(file);
    panels.replace();
    QCOMPARE(chosen, QList<QUrl>{file});

    // Reading a file replaces nothing.
    panels.chooseFile({}, {});
    panels.accept(file);
    QCOMPARE(asked.count(), 2);
}

void QuickFilePanelsTest::describesTheFolderPanel()
{
    QuickFilePanels panels;
    const QUrl folder = QUrl::fromLocalFile(u"/tmp"_s);
    panels.chooseFolder({.title = u"Where"_s, .prompt = u"Choose"_s, .folder = folder}, {});
    QCOMPARE(panels.kind(), QuickFilePanels::Kind::Folder);
    QCOMPARE(panels.title(), u"Where"_s);
    QCOMPARE(panels.prompt(), u"Choose"_s);
    QCOMPARE(panels.folder(), folder);
    panels.reject();
}

void QuickFilePanelsTest::showsOneAtATime()
{
    QuickFilePanels panels;
    QList<QUrl> chosen;
    save(panels, {}, chosen);
    save(panels, {}, chosen);
    QCOMPARE(chosen, QList<QUrl>{QUrl()});
    panels.reject();
    QCOMPARE(chosen.size(), 2);
}

void QuickFilePanelsTest::withdrawsWhenStopped()
{
    QuickFilePanels panels;
    const QSignalSpy withdrawn(&panels, &QuickFilePanels::withdrawn);
    QList<QUrl> chosen;
    const std::stop_source stop;
    save(panels, stop.get_token(), chosen);
    stop.request_stop();
    QCOMPARE(withdrawn.count(), 1);
    QCOMPARE(chosen, QList<QUrl>{QUrl()});
}

QTEST_GUILESS_MAIN(QuickFilePanelsTest)
#include "tst_quickfilepanels.moc"
