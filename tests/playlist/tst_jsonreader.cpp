#include "playlist/JsonReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// The whole text is one value.
bool isValid(const QByteArray &json)
{
    JsonReader reader(json);
    return reader.skipValue() && reader.atEnd();
}

} // namespace

class JsonReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsRightFromWrong_data();
    void tellsRightFromWrong();
    void readsStrings_data();
    void readsStrings();
    void walksValues();
    void refusesEveryCut();
};

void JsonReaderTest::tellsRightFromWrong_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("valid");
    for (const char *json :
         {"[]", "{}", " [ ] ", "[1,2]", R"({"a":[{"b":null}],"c":true})", "[false,\"\",-0.5e+3]",
          "[0,-0,10,1E2,1.25]", "\t{\r\n\"a\" : 1 }\n", R"(["\"\\\/\b\f\n\r\t\u00e9"])"})
        QTest::newRow(json) << QByteArray(json) << true;
    for (const char *json :
         {"",        "[",         "]",         "[1,]",        "[,1]",          "[1 2]",
          "{\"a\"}", "{\"a\":}",  "{a:1}",     "{1:1}",       "{\"a\":1,}",    "[01]",
          "[-]",     "[1.]",      "[.5]",      "[1e]",        "[+1]",          "[nul]",
          "[True]",  "[\"\\x\"]", "[\"a]",     "[\"\\u12\"]", "[\"\\u12g4\"]", "[\"\n\"]",
          "[] []",   "[1}",       "{\"a\":1]", "[\"\xff\"]",  "[\"\\",         "['a']"})
        QTest::newRow(json) << QByteArray(json) << false;
    const auto nested = [](int depth) -> QByteArray {
        return QByteArray(depth, '[') + QByteArray(depth, ']');
    };
    QTest::newRow("deep") << nested(JsonReader::maximumDepth) << true;
    QTest::newRow("too deep") << nested(JsonReader::maximumDepth + 1) << false;
    QTest::newRow("abyss") << nested(1'000'000) << false;
}

void JsonReaderTest::tellsRightFromWrong()
{
    QFETCH(const QByteArray, json);
    QTEST(isValid(json), "valid");
}

void JsonReaderTest::readsStrings_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << R"("News")"_ba << u"News"_s;
    QTest::newRow("empty") << R"("")"_ba << QString();
    QTest::newRow("not ASCII") << "\"Télé 🇫🇷\""_ba << u"Télé 🇫🇷"_s;
    QTest::newRow("every escape") << R"("\"\\\/\b\f\n\r\t")"_ba << u"\"\\/\b\f\n\r\t"_s;
    QTest::newRow("code units") << R"("a\u00e9\u0000\uD83D\uDE00z")"_ba
                                << QString(u"aé"_s + QChar(0) + u"😀z"_s);
    QTest::newRow("half a pair") << R"("\uD83Dx")"_ba << u"?x"_s;
}

void JsonReaderTest::readsStrings()
{
    QFETCH(const QByteArray, json);
    JsonReader reader(json);
    JsonReader::String string;
    QVERIFY(reader.readString(string));
    QTEST(QString::fromUtf8(string.text()), "text");
    QVERIFY(reader.atEnd());
    // Others read the same, but for half a pair.
    if (!string.text().contains('?'))
        QCOMPARE(QJsonDocument::fromJson('[' + json + ']').array()[0].toString(),
                 QString::fromUtf8(string.text()));
}

void JsonReaderTest::walksValues()
{
    JsonReader reader(R"([{"name":"A","x":[1,{"y":2}]},{"name":null}] )");
    JsonReader::String string;
    QByteArrayList seen;
    QVERIFY(reader.enterArray());
    while (reader.nextElement()) {
        QVERIFY(reader.enterObject());
        while (reader.nextKey(string)) {
            seen << string.text();
            if (seen.last() == "x")
                QVERIFY(reader.skipValue());
            else if (!reader.skipNull() && reader.readString(string))
                seen << string.text();
        }
        seen << "end";
    }
    QCOMPARE(seen, (QByteArrayList{"name", "A", "x", "end", "name", "end"}));
    QVERIFY(reader.atEnd());

    JsonReader wrong("[1]");
    QVERIFY(wrong.enterArray() && wrong.nextElement());
    QVERIFY(!wrong.readString(string));
    QVERIFY(wrong.failed() && !wrong.nextElement() && !wrong.atEnd());
}

void JsonReaderTest::refusesEveryCut()
{
    const QByteArray json = R"([{"a":"b\u00e9","c":[1.5e3,true,null]},{}])";
    QVERIFY(isValid(json));
    for (qsizetype length = 0; length < json.size(); ++length)
        QVERIFY2(!isValid(json.first(length)), json.first(length).constData());
}

QTEST_GUILESS_MAIN(JsonReaderTest)
#include "tst_jsonreader.moc"
