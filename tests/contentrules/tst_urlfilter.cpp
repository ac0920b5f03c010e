#include "platform/contentrules/UrlFilter.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro::contentrules;

namespace {

bool matches(const std::vector<UrlPattern> &patterns, const QByteArray &address)
{
    return std::ranges::any_of(patterns, [&address](const UrlPattern &pattern) {
        return pattern.matches(pattern.isCaseSensitive ? address : address.toLower());
    });
}

/// Random expressions of few characters, so that they often match.
class Generator
{
public:
    QByteArray expression()
    {
        QByteArray text = choice(3);
        if (below(4) == 0)
            text.prepend('^');
        if (below(4) == 0)
            text.append('$');
        return text;
    }
    QByteArray address()
    {
        QByteArray text;
        for (int i = below(9); i > 0; --i)
            text += "abAB/."[below(6)];
        return text;
    }

private:
    int below(int limit) { return int(m_random() % unsigned(limit)); }

    QByteArray choice(int depth)
    {
        // One alternative only: an anchor next to several would bind to one of them.
        return sequence(depth);
    }
    QByteArray sequence(int depth)
    {
        QByteArray text;
        for (int i = 1 + below(3); i > 0; --i) {
            text += atom(depth);
            text += QList<QByteArray>{"", "", "", "*", "+", "?", "*?", "+?"}[below(8)];
        }
        return text;
    }
    QByteArray atom(int depth)
    {
        const int kind = below(depth > 0 ? 8 : 6);
        switch (kind) {
        case 0:
            return ".";
        case 1:
            return QList<QByteArray>{"[ab]", "[^a]", "[a-b/]", "[^B-]", "[.]"}[below(5)];
        case 2:
            return QList<QByteArray>{"\\.", "\\/", "\\^"}[below(3)];
        case 6:
            return '(' + sequence(depth - 1) + ')';
        case 7:
            return "(?:" + sequence(depth - 1) + '|' + sequence(depth - 1) + ')';
        default:
            return QByteArray(1, "abAB/"[below(5)]);
        }
    }

    std::mt19937 m_random{20260101};
};

} // namespace

class UrlFilterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matches_data();
    void matches();
    void agreesWithAnotherEngine();
    void refuses_data();
    void refuses();
    void expandsAlternatives();
    void findsRequiredText_data();
    void findsRequiredText();
    void takesLinearTime();
};

void UrlFilterTest::matches_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<bool>("matches");
    const QByteArray address("https://Ads.Example/PageAd/x.js?a=1");
    const auto row = [&](const char *expression, bool isMatch) {
        QTest::newRow(expression) << QByteArray(expression) << address << isMatch;
    };
    row(".*", true);
    row("ads\\.example", true);
    row("adsxexample", false);
    row(".*(nowhere|/pagead/).*", true);
    row(".*(nowhere|pagead$).*", false);
    row("^https?://ads\\.", true);
    row("^ads", false);
    row("a=1$", true);
    row("a=$", false);
    row("^https://ads\\.example/pagead/x\\.js\\?a=1$", true);
    row("^.*x\\.js.*$", true);
    row("(^ftp://|^https://)", true);
    row("/page[a-c]d/", true);
    row("/page[^a-c]d/", false);
    row("[^/]+\\.js", true);
    row("x\\.js.a=[0-9]+$", true);
    row("(a|b)(d|e)(s|t)\\.", true);
    row("(?:page)?ad/y?x", true);
    row("://(.*)/(.*)/x", true);
    row("s+t+", false);
    row("", true);
    QTest::newRow("nothing but nothing") << QByteArray("^$") << QByteArray("a") << false;
    QTest::newRow("nothing") << QByteArray("^$") << QByteArray() << true;
    QTest::newRow("range and dash") << QByteArray("[a-]-[-a]") << QByteArray("---") << true;
    QTest::newRow("escaped") << QByteArray(R"(^\^\$\*\+\?\.\(\)\[\]\{\}\|\\$)")
                             << QByteArray(R"(^$*+?.()[]{}|\)") << true;
    QTest::newRow("bracket") << QByteArray("a]") << QByteArray("a]") << true;
    QTest::newRow("not ASCII") << QByteArray("^a.b$") << QByteArray("a\xc3\x62") << false;
}

void UrlFilterTest::matches()
{
    QFETCH(const QByteArray, expression);
    QFETCH(const QByteArray, address);
    const auto patterns = readUrlFilter(expression, false);
    if (expression.isEmpty()) {
        QVERIFY(!patterns);
        return;
    }
    QVERIFY(patterns);
    QTEST(::matches(*patterns, address), "matches");
    // With the same letters the case makes no difference.
    const auto sensitive = readUrlFilter(expression, true);
    QTEST(::matches(*sensitive, address.toLower()), "matches");
}

void UrlFilterTest::agreesWithAnotherEngine()
{
    Generator generator;
    int matched = 0;
    for (int i = 0; i < 8000; ++i) {
        const QByteArray expression = generator.expression();
        const bool isSensitive = i % 2 == 0;
        const auto patterns = readUrlFilter(expression, isSensitive);
        QVERIFY2(patterns, expression.constData());
        const QRegularExpression other(QString::fromLatin1(expression),
                                       isSensitive ? QRegularExpression::NoPatternOption
                                                   : QRegularExpression::CaseInsensitiveOption);
        QVERIFY2(other.isValid(), expression.constData());
        for (int j = 0; j < 5; ++j) {
            const QByteArray address = generator.address();
            const QRegularExpressionMatch match = other.match(QString::fromLatin1(address));
            // It gives up where backtracking gets out of hand.
            if (!match.isValid())
                continue;
            matched += match.hasMatch();
            const bool agrees = ::matches(*patterns, address) == match.hasMatch();
            if (!agrees)
                qWarning() << expression << address;
            QVERIFY(agrees);
        }
    }
    QVERIFY(matched > 4000);
    QVERIFY(matched < 36000);
}

void UrlFilterTest::refuses_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<UrlFilterError>("error");
    for (const char *expression :
         {"(a",    "a)",    "*a",    "a**",      "a+*",        "|*",    "a{2}", "a{",
          "[a",    "[]",    "[^]",   "[b-a]",    "[\\d]",      "\\d",   "\\w+", "\\b",
          "\\1",   "\\",    "(?=a)", "(?!a)",    "(?<n>a)",    "(?",    "a^b",  "a$b",
          "x(^a)", "(a$)x", "^*",    "\xc3\xa4", "[\xc3\xa4]", "(a|*)", "a\\",  "(^a|^b)c"})
        QTest::newRow(expression) << QByteArray(expression) << UrlFilterError::Syntax;
    QTest::newRow("null character") << QByteArray("a\0b", 3) << UrlFilterError::Syntax;
    QTest::newRow("endless groups")
        << QByteArray(100000, '(') + QByteArray(100000, ')') << UrlFilterError::Syntax;
    QTest::newRow("too many steps")
        << QByteArray("[ab]").repeated(3000) << UrlFilterError::TooLarge;
}

void UrlFilterTest::refuses()
{
    QFETCH(const QByteArray, expression);
    const auto patterns = readUrlFilter(expression, false);
    QVERIFY(!patterns);
    QTEST(patterns.error(), "error");
}

void UrlFilterTest::expandsAlternatives()
{
    // A list of domains must not become one large automaton.
    QByteArray expression(".*(");
    for (int i = 0; i < 10000; ++i)
        expression += "host" + QByteArray::number(i) + "\\.example|";
    expression += "last\\.example).*";
    const auto patterns = readUrlFilter(expression, false);
    QVERIFY(patterns);
    QCOMPARE(patterns->size(), size_t(10001));
    QVERIFY(std::ranges::all_of(*patterns,
                                [](const UrlPattern &pattern) { return pattern.steps.empty(); }));
    QCOMPARE(patterns->back().text, QByteArray("last.example"));
}

void UrlFilterTest::findsRequiredText_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<QByteArray>("required");
    QTest::newRow("longest") << QByteArray("^https?://ads\\.[a-z]+/x") << QByteArray("://ads.");
    QTest::newRow("optional character ends it") << QByteArray("abc?d") << QByteArray("ab");
    QTest::newRow("lower case") << QByteArray("[0-9]ABC") << QByteArray("abc");
    QTest::newRow("none") << QByteArray("[ab]+.?") << QByteArray();
    QTest::newRow("group") << QByteArray("a(bc)d.e") << QByteArray("abcd");
}

void UrlFilterTest::findsRequiredText()
{
    QFETCH(const QByteArray, expression);
    const auto patterns = readUrlFilter(expression, true);
    QCOMPARE(patterns->size(), size_t(1));
    QTEST(patterns->front().required, "required");
}

void UrlFilterTest::takesLinearTime()
{
    // A backtracking engine would not live to see the end of these.
    const QByteArray address(10000, 'a');
    for (const char *expression : {"(a*)*b", "(a|a)*b", "(a|aa)+c", "a.*a.*a.*a.*a.*b"}) {
        const auto patterns = readUrlFilter(expression, false);
        QVERIFY(patterns);
        QVERIFY(!::matches(*patterns, address));
    }
}

QTEST_GUILESS_MAIN(UrlFilterTest)
#include "tst_urlfilter.moc"
