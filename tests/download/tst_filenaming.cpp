#include "download/FileNaming.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

bool make(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
}

} // namespace

class FileNamingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleansNames_data();
    void cleansNames();
    void takesTheFirstFreeName_data();
    void takesTheFirstFreeName();
    void givesAFileInsideTheFolder_data();
    void givesAFileInsideTheFolder();
    void needsTheFolder();
};

void FileNamingTest::cleansNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("safe");
    const auto row = [](const char *label, const QString &name, const QString &safe) {
        QTest::newRow(label) << name << safe;
    };
    row("plain", u"Evening News"_s, u"Evening News"_s);
    row("separators", u"a/b:c"_s, u"a-b-c"_s);
    row("each of the set", u"/\\:?%*|\"<>"_s, u"----------"_s);
    row("only separators", u"/"_s, u"-"_s);
    row("empty", {}, u"HLS Video"_s);
    row("blank", u" \t\n\u3000"_s, u"HLS Video"_s);
    row("trimmed", u"\n a b \t"_s, u"a b"_s);
    row("line break inside", u"a\nb"_s, u"a-b"_s);
    row("terminal sequence", u"a\u001B[31mb"_s, u"a-[31mb"_s);
    row("NUL", QString(u"a"_s + QChar(0) + u'b'), u"a-b"_s);
    row("dots", u".."_s, u".."_s);
    row("up and away", u"../../etc/passwd"_s, u"..-..-etc-passwd"_s);
    row("one hundred", QString(100, u'x'), QString(100, u'x'));
    row("more", QString(101, u'x'), QString(100, u'x'));
    row("cut before a space", QString(QString(99, u'x') + u"  y"),
        QString(QString(99, u'x') + u' '));
    row("four-byte characters", u"\U0001F600"_s.repeated(101), u"\U0001F600"_s.repeated(100));
    row("joined characters", u"e\u0301"_s.repeated(101), u"e\u0301"_s.repeated(100));
}

void FileNamingTest::cleansNames()
{
    QFETCH(const QString, name);
    QTEST(safeFilename(name), "safe");
}

void FileNamingTest::takesTheFirstFreeName_data()
{
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QString>("next");
    QTest::newRow("none") << QStringList() << u"HLS Video.ts"_s;
    QTest::newRow("first") << QStringList{u"HLS Video.ts"_s} << u"HLS Video 2.ts"_s;
    QTest::newRow("two") << QStringList{u"HLS Video.ts"_s, u"HLS Video 2.ts"_s}
                         << u"HLS Video 3.ts"_s;
    QTest::newRow("gap") << QStringList{u"HLS Video.ts"_s, u"HLS Video 3.ts"_s}
                         << u"HLS Video 2.ts"_s;
    QTest::newRow("other extension") << QStringList{u"HLS Video.mp4"_s} << u"HLS Video.ts"_s;
}

void FileNamingTest::takesTheFirstFreeName()
{
    QFETCH(const QStringList, present);
    QFETCH(const QString, next);
    const QTemporaryDir folder;
    for (const QString &name : present)
        QVERIFY(make(folder.filePath(name)));
    QCOMPARE(uniqueDestination(folder.path(), std::nullopt, u"ts"_s), folder.filePath(next));

    // A link that leads nowhere is in the way too.
    QVERIFY(QFile::link(u"/nowhere"_s, folder.filePath(next)));
    QVERIFY(uniqueDestination(folder.path(), std::nullopt, u"ts"_s) != folder.filePath(next));
}

void FileNamingTest::givesAFileInsideTheFolder_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("four-byte characters") << u"\U0001F600"_s.repeated(100);
    QTest::newRow("one character of many bytes") << QString(u'a' + QString(2000, QChar(0x301)));
    QTest::newRow("half a character") << QString(u'a' + QString(QChar(0xD83D)) + u'b');
    QTest::newRow("NUL") << QString(QChar(0));
    QTest::newRow("dot") << u"."_s;
    QTest::newRow("up") << u".."_s;
    QTest::newRow("up and away") << u"../../outside"_s;
    QTest::newRow("absolute") << u"/tmp/outside"_s;
    QTest::newRow("home") << u"~"_s;
}

void FileNamingTest::givesAFileInsideTheFolder()
{
    QFETCH(const QString, name);
    const QTemporaryDir folder;
    for (int i = 1; i <= 10; ++i) {
        const auto path = uniqueDestination(folder.path(), name, u"mp4"_s);
        QVERIFY(path);
        QVERIFY(make(*path));
    }
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 10);
}

void FileNamingTest::needsTheFolder()
{
    const QTemporaryDir folder;
    const QString missing = folder.filePath(u"missing"_s);
    QVERIFY(!uniqueDestination(missing, u"a"_s, u"ts"_s));
    QVERIFY(make(missing));
    QVERIFY(!uniqueDestination(missing, u"a"_s, u"ts"_s));
    QVERIFY(!uniqueDestination({}, u"a"_s, u"ts"_s));
}

QTEST_GUILESS_MAIN(FileNamingTest)
#include "tst_filenaming.moc"
