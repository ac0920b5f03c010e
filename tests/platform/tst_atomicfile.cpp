#include "platform/AtomicFile.h"
#include "platform/qt/FileUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

class AtomicFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replacesContentAndKeepsPermissions();
    void writesThroughALink();
    void cannotWrite_data();
    void cannotWrite();
    void setAsideKeepsEveryValue();
    void moves();
};

void AtomicFileTest::replacesContentAndKeepsPermissions()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"f"_s);
    constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    // Larger than any buffer, then smaller.
    for (const QByteArray &content : {QByteArray(300000, 'x'), QByteArray("y"), QByteArray()}) {
        QVERIFY(replaceFile(path, content, ownerOnly));
        QCOMPARE(contentOf(path), content);
    }
    QVERIFY(replaceFile(path, "z"));
    QVERIFY(!(QFile::permissions(path) & (QFileDevice::ReadGroup | QFileDevice::ReadOther)));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{u"f"_s});
}

void AtomicFileTest::writesThroughALink()
{
    const QTemporaryDir folder;
    const QString target = folder.filePath(u"target"_s);
    QVERIFY(replaceFile(target, "old"));
    QVERIFY(QFile::link(target, folder.filePath(u"link"_s)));
    QVERIFY(replaceFile(folder.filePath(u"link"_s), "new"));
    QCOMPARE(contentOf(target), "new");
}

void AtomicFileTest::cannotWrite_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no such folder") << u"missing/f"_s;
    QTest::newRow("a folder") << u"folder"_s;
    QTest::newRow("below a file") << u"file/f"_s;
}

void AtomicFileTest::cannotWrite()
{
    QFETCH(const QString, path);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u"folder"_s));
    QVERIFY(replaceFile(folder.filePath(u"file"_s), "kept"));
    const auto written = replaceFile(folder.filePath(path), "new");
    QVERIFY(!written);
    QVERIFY(!written.error().description.isEmpty());
    QCOMPARE(contentOf(folder.filePath(u"file"_s)), "kept");
}

void AtomicFileTest::setAsideKeepsEveryValue()
{
    const QTemporaryDir folder;
    FileUserDefaults defaults(folder.filePath(u"settings"_s));
    const QString key = u"A.b/c"_s;
    QVERIFY(defaults.setAside(key));
    QVERIFY(!QDir(folder.filePath(u"settings"_s)).exists());
    for (const char *value : {"first", "second"}) {
        QVERIFY(defaults.setData(key, value));
        for (const QFileInfo &file :
             QDir(folder.filePath(u"settings"_s)).entryInfoList(QDir::Files))
            QVERIFY(!file.permission(QFile::ReadGroup) && !file.permission(QFile::ReadOther));
        QVERIFY(defaults.setAside(key));
        QCOMPARE(defaults.data(key), std::nullopt);
    }
    QList<QByteArray> kept;
    const QDir settings(folder.filePath(u"settings"_s));
    for (const QString &name : settings.entryList(QDir::Files, QDir::Name))
        kept.append(contentOf(settings.filePath(name)));
    QCOMPARE(kept, (QList<QByteArray>{"first", "second"}));
}

void AtomicFileTest::moves()
{
    // Most systems have the second one in memory, on a file system of its own.
    const QTemporaryDir folder;
    const QTemporaryDir other(u"/dev/shm/lumaro-test-XXXXXX"_s);
    const QByteArray content(3'000'000, 'x');
    for (const QString &to : {folder.filePath(u"b"_s), other.filePath(u"b"_s)}) {
        const QString from = folder.filePath(u"a"_s);
        QVERIFY(replaceFile(to, "before"));
        QVERIFY(replaceFile(from, content));
        QVERIFY(moveFile(from, to));
        QFile moved(to);
        QVERIFY(moved.open(QIODevice::ReadOnly));
        QCOMPARE(moved.readAll(), content);
        QVERIFY(!QFile::exists(from));
        QVERIFY(!moveFile(from, to));
        QCOMPARE(QFileInfo(to).size(), content.size());
    }
    QVERIFY(replaceFile(folder.filePath(u"a"_s), content));
    QVERIFY(!moveFile(folder.filePath(u"a"_s), folder.filePath(u"none/b"_s)));
    QVERIFY(QFile::exists(folder.filePath(u"a"_s)));
}

QTEST_GUILESS_MAIN(AtomicFileTest)
#include "tst_atomicfile.moc"
