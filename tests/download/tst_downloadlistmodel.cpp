#include "download/DownloadListModel.h"
#include "tests/download/DownloadWorld.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Model = DownloadListModel;

class DownloadListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheNewestFirst();
    void followsAJob();
    void showsAFailure();
};

void DownloadListModelTest::showsTheNewestFirst()
{
    DownloadWorld world;
    Model model(*world.manager);
    const QAbstractItemModelTester tester(&model);
    world.manager->start(world.url(u"b/first.m3u8"_s), {});
    world.manager->start(world.url(u"a/"_s), {});
    world.manager->start(world.url(u"b/first.m3u8"_s), {});
    QCOMPARE(model.count(), 2);
    QCOMPARE(model.activeCount(), 2);
    QCOMPARE(model.index(0).data(Model::TitleRole), u"h"_s);
    QCOMPARE(model.index(1).data(Model::TitleRole), u"first.m3u8"_s);

    // What came before the model is there too.
    QCOMPARE(Model(*world.manager).activeCount(), 2);
}

void DownloadListModelTest::followsAJob()
{
    DownloadWorld world;
    Model model(*world.manager);
    const QAbstractItemModelTester tester(&model);
    const QSignalSpy changes(&model, &Model::dataChanged);
    const QUrl list = world.url(u"list.m3u8"_s);
    const QModelIndex row = (world.manager->start(list, u"News"_s), model.index(0));
    QCOMPARE(row.data(Model::TitleRole), u"News"_s);
    QCOMPARE(row.data(Model::MessageRole), u"Preparing…"_s);
    QCOMPARE(row.data(Model::ProgressRole), -1.0);
    QCOMPARE(row.data(Model::IsActiveRole), true);
    QCOMPARE(row.data(Model::CanRevealRole), false);

    world.respond(list, "#EXTM3U\na\nb\n#EXT-X-ENDLIST");
    QCOMPARE(row.data(Model::TitleRole), u"News.ts"_s);
    QCOMPARE(row.data(Model::CanRevealRole), true);
    world.respond(world.url(u"a"_s), "A");
    QCOMPARE(row.data(Model::MessageRole), u"50%"_s);
    QCOMPARE(row.data(Model::ProgressRole), 0.5);
    world.respond(world.url(u"b"_s), "B");
    QCOMPARE(row.data(Model::MessageRole), u"Saved"_s);
    QCOMPARE(row.data(Model::IsActiveRole), false);
    QCOMPARE(row.data(Model::HasFailedRole), false);
    QCOMPARE(row.data(Model::UrlRole), list);
    QCOMPARE(model.activeCount(), 0);
    QCOMPARE(changes.count(), 4);
}

void DownloadListModelTest::showsAFailure()
{
    DownloadWorld world;
    Model model(*world.manager);
    const QUrl list = world.url(u"list.m3u8"_s);
    world.manager->start(list, {});
    QCOMPARE(model.index(0).data(Model::HasFailedRole), false);
    world.http.respond(list, 404, {});
    QCOMPARE(model.index(0).data(Model::HasFailedRole), true);
    QCOMPARE(model.index(0).data(Model::MessageRole), u"Download failed"_s);

    world.manager->start(list, {});
    QCOMPARE(model.count(), 1);
    QCOMPARE(model.index(0).data(Model::HasFailedRole), false);
    world.manager->stop(list);
    QCOMPARE(model.index(0).data(Model::HasFailedRole), false);
}

QTEST_GUILESS_MAIN(DownloadListModelTest)
#include "tst_downloadlistmodel.moc"
