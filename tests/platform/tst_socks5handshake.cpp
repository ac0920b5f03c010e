#include "platform/relay/Socks5Handshake.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Credential = ProxyConfiguration::Credential;
using State = Socks5Handshake::State;

Q_DECLARE_METATYPE(std::optional<lumaro::ProxyConfiguration::Credential>)
Q_DECLARE_METATYPE(lumaro::Socks5Handshake::State)

/// What is said to a SOCKS5 proxy, byte by byte.
class Socks5HandshakeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void speaks_data();
    void speaks();
};

void Socks5HandshakeTest::speaks_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<std::optional<Credential>>("credential");
    QTest::addColumn<QByteArray>("answers"); // in hexadecimal digits
    QTest::addColumn<QByteArray>("said");
    QTest::addColumn<State>("state");
    QTest::addColumn<int>("left");
    const std::optional<Credential> none;
    const std::optional user = Credential{u"u"_s, u"pw"_s};
    const auto row = [](const char *name, const QString &host,
                        const std::optional<Credential> &credential, const char *answers,
                        const char *said, State state, int left = 0) {
        QTest::newRow(name) << host << credential << QByteArray(answers) << QByteArray(said)
                            << state << left;
    };
    const char *const named = "050100 050100 03 04 73697465 01bb";
    row("name", u"site"_s, none, "0500 05000001 00000000 0000", named, State::Done);
    row("the server speaks at once", u"site"_s, none, "0500 05000003 01 61 0000 4869", named,
        State::Done, 2);
    row("IPv4", u"1.2.3.4"_s, none, "0500 05000004 00000000000000000000000000000000 0000",
        "050100 050100 01 01020304 01bb", State::Done);
    row("IPv6", u"::1"_s, none, "0500", "050100 050100 04 00000000000000000000000000000001 01bb",
        State::Continues);
    row("IDN", u"höst"_s, none, "0500", "050100 050100 03 0b 786e2d2d6873742d736e61 01bb",
        State::Continues);
    row("password", u"site"_s, user, "0502 0100 05000001 00000000 0000",
        "05020002 01 01 75 02 7077 050100 03 04 73697465 01bb", State::Done);
    row("password not asked for", u"site"_s, user, "0500", "05020002 050100 03 04 73697465 01bb",
        State::Continues);
    row("wrong password", u"site"_s, user, "0502 0101", "05020002 01 01 75 02 7077", State::Failed,
        2);
    row("password asked for without one", u"site"_s, none, "0502", "050100", State::Failed, 2);
    row("no method", u"site"_s, none, "05ff", "050100", State::Failed, 2);
    row("not SOCKS5", u"site"_s, none, "4854", "050100", State::Failed, 2);
    row("refused", u"site"_s, none, "0500 0505", named, State::Unreachable, 2);
    row("not allowed", u"site"_s, none, "0500 0502", named, State::Failed, 2);
    row("refused, not SOCKS5", u"site"_s, none, "0500 0405", named, State::Failed, 2);
    row("unknown address", u"site"_s, none, "0500 05000002 00", named, State::Failed, 5);
    row("long name", QString(64, u'x') + u'.' + QString(200, u'y'), none, "0500", "050100",
        State::Failed);
    row("unfinished", u"site"_s, none, "0500 05000001 000000", named, State::Continues, 7);
}

void Socks5HandshakeTest::speaks()
{
    QFETCH(const QString, host);
    QFETCH(const std::optional<Credential>, credential);
    QFETCH(const QByteArray, answers);
    QFETCH(const QByteArray, said);
    constexpr quint16 port = 443;
    const QByteArray all = QByteArray::fromHex(answers);
    // Whole, and as it may come from the network.
    for (const qsizetype piece : {all.size(), qsizetype(1)}) {
        Socks5Handshake handshake(host, port, credential);
        QByteArray output = handshake.takeOutput();
        QByteArray waiting;
        for (qsizetype at = 0; at < all.size(); at += piece) {
            waiting += all.sliced(at, piece);
            waiting.remove(0, handshake.read(waiting));
            output += handshake.takeOutput();
        }
        QCOMPARE(output.toHex(), QByteArray::fromHex(said).toHex());
        QTEST(handshake.state(), "state");
        QTEST(int(waiting.size()), "left");
    }
}

QTEST_APPLESS_MAIN(Socks5HandshakeTest)
#include "tst_socks5handshake.moc"
