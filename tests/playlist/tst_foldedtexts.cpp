#include "playlist/FoldedTexts.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

FoldedTexts fold(const QStringList &texts)
{
    return {texts.size(), [&](qsizetype i) { return texts[i]; }};
}

/// "1" for each text that is found, "0" for each other.
QString found(const QStringList &texts, const QString &text)
{
    QString marks;
    for (const quint8 contains : fold(texts).containing(text))
        marks += contains ? u'1' : u'0';
    return marks;
}

} // namespace

class FoldedTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void finds_data();
    void finds();
    void agreesWithPlainSearch();
};

void FoldedTextsTest::finds_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QStringList names{u"Sport 1"_s, u"NEWS sport"_s, u"Kino"_s};
    QTest::newRow("any case") << names << u"sPoRT"_s << u"110"_s;
    QTest::newRow("one letter") << names << u"k"_s << u"001"_s;
    QTest::newRow("at the end of the last") << names << u"ino"_s << u"001"_s;
    QTest::newRow("whole text") << names << u"kino"_s << u"001"_s;
    QTest::newRow("longer than any") << names << QString(100, u'k') << u"000"_s;
    QTest::newRow("nothing matches everything") << names << QString() << u"111"_s;
    QTest::newRow("not across two texts") << names << u"1\nnews"_s << u"000"_s;
    QTest::newRow("line feed alone") << names << u"\n"_s << u"000"_s;
    QTest::newRow("empty texts") << QStringList{QString(), u"a"_s, QString()} << u"a"_s << u"010"_s;
    QTest::newRow("no texts") << QStringList() << u"a"_s << QString();
    QTest::newRow("Cyrillic") << QStringList{u"ПЕРВЫЙ"_s, u"второй"_s} << u"первый"_s << u"10"_s;
    QTest::newRow("length changes with the case")
        << QStringList{u"\u017fPORT"_s, u"Sport"_s, u"STRA\u1e9eE"_s} << u"sport"_s << u"110"_s;
    QTest::newRow("supplementary plane")
        << QStringList{u"\U0001F1EB\U0001F1F7"_s, u"\U00010400"_s} << u"\U00010428"_s << u"01"_s;
}

void FoldedTextsTest::finds()
{
    QFETCH(const QStringList, texts);
    QFETCH(const QString, text);
    QTEST(found(texts, text), "expected");
}

void FoldedTextsTest::agreesWithPlainSearch()
{
    QRandomGenerator random(7);
    const auto anyText = [&](int longest) {
        QString text;
        for (quint32 i = random.bounded(longest); i > 0; --i)
            text += u"abüß"[random.bounded(4)];
        return text;
    };
    for (int round = 0; round < 300; ++round) {
        QStringList texts;
        while (texts.size() < 50)
            texts.append(anyText(40));
        const QString needle = anyText(12);
        QString expected;
        for (const QString &text : std::as_const(texts))
            expected += text.toCaseFolded().contains(needle.toCaseFolded()) ? u'1' : u'0';
        QCOMPARE(found(texts, needle), expected);
    }
}

QTEST_GUILESS_MAIN(FoldedTextsTest)
#include "tst_foldedtexts.moc"
