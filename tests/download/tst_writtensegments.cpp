#include "download/WrittenSegments.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// Lists the segments `first` to `last` and counts those that were new.
int list(WrittenSegments &written, int first, int last)
{
    written.beginPlaylist();
    int added = 0;
    for (int i = first; i <= last; ++i)
        added += written.insert(QUrl(u"https://h/s%1.ts"_s.arg(i))) ? 1 : 0;
    return added;
}

} // namespace

class WrittenSegmentsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsWhatIsListed();
    void stillKnowsWhatIsListedFor();
    void knowsWhatWasListedLongAgo();
    void doesNotGrowForEver();
};

void WrittenSegmentsTest::knowsWhatIsListed()
{
    WrittenSegments written;
    QCOMPARE(list(written, 1, 6), 6);
    QCOMPARE(list(written, 1, 6), 0);
    QCOMPARE(list(written, 3, 8), 2);
    QCOMPARE(list(written, 1, 8), 0);
}

void WrittenSegmentsTest::stillKnowsWhatIsListedFor()
{
    // A playlist that only grows is longer than what is remembered of old ones.
    WrittenSegments written;
    QCOMPARE(list(written, 1, 70'000), 70'000);
    for (int i = 1; i <= 5; ++i)
        QCOMPARE(list(written, 1, 70'000 + i), 1);
}

void WrittenSegmentsTest::knowsWhatWasListedLongAgo()
{
    WrittenSegments written;
    for (int i = 1; i <= 5000; ++i)
        list(written, i, i + 5);
    QCOMPARE(list(written, 1, 5005), 0);
}

void WrittenSegmentsTest::doesNotGrowForEver()
{
    WrittenSegments written;
    qsizetype most = 0;
    for (int i = 1; i <= 200'000; ++i) {
        QCOMPARE(list(written, i, i + 2), i == 1 ? 3 : 1);
        most = std::max(most, written.size());
    }
    QVERIFY2(most < 50'000, qPrintable(QString::number(most)));
}

QTEST_GUILESS_MAIN(WrittenSegmentsTest)
#include "tst_writtensegments.moc"
