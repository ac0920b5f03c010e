#include "platform/qt/QuickFilePanels.h"

#include <QSignalSpy>
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
    QVERIFY(panels.isSaving());
    QCOMPARE(panels.title(), u"Save"_s);
    QCOMPARE(panels.prompt(), u"Go"_s);
    QCOMPARE(panels.proposedName(), u"list.m3u"_s);
    QCOMPARE(panels.defaultSuffix(), u"m3u"_s);
    QCOMPARE(panels.nameFilters(), QStringList{u"Lists (*.m3u *.M3U)"_s});
    const QUrl file = QUrl::fromLocalFile(u"/tmp/a.m3u"_s);
    panels.accept(file);
    QCOMPARE(chosen, QList<QUrl>{file});

    panels.chooseFile(
        {.title = u"Open"_s, .prompt = {}, .typeDescription = u"Lists"_s, .extensions = {u"m3u"_s}},
        {});
    QVERIFY(!panels.isSaving());
    QCOMPARE(panels.proposedName(), QString());
    panels.reject();
}

void QuickFilePanelsTest::describesTheFolderPanel()
{
    QuickFilePanels panels;
    const QUrl folder = QUrl::fromLocalFile(u"/tmp"_s);
    panels.chooseFolder({.title = u"Where"_s, .prompt = u"Choose"_s, .folder = folder}, {});
    QVERIFY(panels.isChoosingFolder());
    QVERIFY(!panels.isSaving());
    QCOMPARE(panels.title(), u"Where"_s);
    QCOMPARE(panels.prompt(), u"Choose"_s);
    QCOMPARE(panels.folder(), folder);
    panels.reject();

    panels.chooseNewFile({}, {});
    QVERIFY(!panels.isChoosingFolder());
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
