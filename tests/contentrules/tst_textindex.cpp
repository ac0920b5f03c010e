#include "platform/contentrules/TextIndex.h"

#include <QTest>

#include <random>
#include <set>

using namespace lumaro::contentrules;

namespace {

using Finds = std::set<std::pair<quint32, qsizetype>>;

/// Where `texts` stand in `address`, found by looking everywhere.
Finds standsIn(const QByteArray &address, const QByteArrayList &texts)
{
    Finds finds;
    for (qsizetype i = 0; i < texts.size(); ++i) {
        for (qsizetype at = address.indexOf(texts[i]); at >= 0;
             at = address.indexOf(texts[i], at + 1))
            finds.insert({quint32(i), at});
    }
    return finds;
}

/// The same by the index.
Finds found(const TextIndex &index, const QByteArray &address, const QByteArrayList &texts)
{
    Finds finds;
    index.search(address, [&](quint32 value, qsizetype at) {
        if (at >= 0 && address.sliced(at).startsWith(texts[value]))
            finds.insert({value, at});
        return false;
    });
    return finds;
}

TextIndex indexOf(const QByteArrayList &texts)
{
    std::vector<TextIndex::Entry> entries;
    for (qsizetype i = 0; i < texts.size(); ++i)
        entries.push_back({texts[i], quint32(i)});
    return TextIndex(entries);
}

} // namespace

class TextIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsAll_data();
    void findsAll();
    void endsWhenToldTo();
    void manyOfOneSiteStayQuick();
};

void TextIndexTest::findsAll_data()
{
    QTest::addColumn<QByteArray>("letters");
    QTest::addColumn<int>("longest");
    QTest::newRow("short texts") << QByteArray("ab.") << 4;
    QTest::newRow("long texts") << QByteArray("ab.") << 20;
    QTest::newRow("few dots") << QByteArray("abcdefgh.") << 14;
    QTest::newRow("no dots") << QByteArray("ab/") << 10;
}

void TextIndexTest::findsAll()
{
    QFETCH(const QByteArray, letters);
    QFETCH(const int, longest);
    std::mt19937 random{20261125};
    const auto below = [&random](qsizetype limit) { return qsizetype(random() % size_t(limit)); };
    const auto word = [&](qsizetype length) {
        QByteArray text;
        while (text.size() < length)
            text += letters[below(letters.size())];
        return text;
    };
    for (int round = 0; round < 100; ++round) {
        QByteArrayList texts;
        // Some stand in an address by chance, others were taken from one.
        const QByteArray source = word(60);
        for (int i = 0; i < 40; ++i) {
            const qsizetype length = 1 + below(longest);
            texts.append(i % 2 == 0 ? word(length) : source.mid(below(40), length));
        }
        const TextIndex index = indexOf(texts);
        for (const QByteArray &address : {source, word(60), word(3), QByteArray(), texts.first()})
            QCOMPARE(found(index, address, texts), standsIn(address, texts));
    }
}

void TextIndexTest::endsWhenToldTo()
{
    const TextIndex index = indexOf({"example.com", "/ad/"});
    int calls = 0;
    const auto count = [&calls](quint32, qsizetype) { return ++calls > 0; };
    QVERIFY(index.search("http://example.com/ad/", count));
    QCOMPARE(calls, 1);
    QVERIFY(!index.search("http://other.com/", count));
    QVERIFY(!TextIndex().search("http://example.com/", count));
}

void TextIndexTest::manyOfOneSiteStayQuick()
{
    // What they have in common does not lead to all of them.
    QByteArrayList texts;
    for (int i = 0; i < 20'000; ++i)
        texts.append(QByteArray::number(i, 36).rightJustified(3, 'x') + ".blogspot.com");
    const TextIndex index = indexOf(texts);
    qsizetype candidates = 0;
    index.search("http://nobody.blogspot.com/", [&candidates](quint32, qsizetype) {
        ++candidates;
        return false;
    });
    QVERIFY2(candidates < 200, qPrintable(QString::number(candidates)));
}

QTEST_APPLESS_MAIN(TextIndexTest)
#include "tst_textindex.moc"
