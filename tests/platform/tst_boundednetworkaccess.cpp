#include "platform/qt/BoundedNetworkAccess.h"
#include "tests/e2e/servers/FaultServer.h"

#include <QBuffer>
#include <QDirIterator>
#include <QImage>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

Q_DECLARE_METATYPE(lumaro::FaultResponse)

namespace {

constexpr qint64 bound = BoundedNetworkAccess::maximumPictureSize;

QByteArray picture(const char *format = "PNG")
{
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.save(&file, format);
    return file.data();
}

/// As large as `size`, with a picture's beginning.
QByteArray pictureOf(qint64 size)
{
    return picture().leftJustified(size, '\0');
}

FaultResponse unannounced(qint64 size, FaultResponse::Framing framing)
{
    FaultResponse response = FaultResponse::of("image/png", picture());
    response.body.part = QByteArray(1 << 16, '\0');
    response.body.times = size < 0 ? size : size >> 16;
    response.framing = framing;
    return response;
}

qint64 sizeOf(const QString &folder)
{
    qint64 size = 0;
    for (QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories); files.hasNext();)
        size += files.nextFileInfo().size();
    return size;
}

} // namespace

class BoundedNetworkAccessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void loadsPictures_data();
    void loadsPictures();
    void refuses_data();
    void refuses();
    void givesUpWhatTrickles();
    void followsRedirectsWithinTheWebOnly_data();
    void followsRedirectsWithinTheWebOnly();
    void asksOnlyOnce();
    void cacheStaysWithinItsBound();

private:
    /// The ended reply to a request for `url`.
    std::unique_ptr<QNetworkReply> get(const QUrl &url)
    {
        std::unique_ptr<QNetworkReply> reply(m_manager->get(QNetworkRequest(url)));
        if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 30'000))
            qWarning("The request does not end.");
        return reply;
    }
    void use(std::chrono::milliseconds patience)
    {
        m_manager.reset(BoundedNetworkAccess(m_folder->path(), patience).create(nullptr));
    }

    std::unique_ptr<FaultServer> m_server;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QNetworkAccessManager> m_manager;
};

void BoundedNetworkAccessTest::initTestCase()
{
    auto server = FaultServer::start();
    QVERIFY(server);
    m_server = *std::move(server);
}

void BoundedNetworkAccessTest::init()
{
    m_manager.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    use(30s);
}

void BoundedNetworkAccessTest::loadsPictures_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("PNG") << picture("PNG");
    QTest::newRow("JPEG") << picture("JPG");
    QTest::newRow("BMP") << picture("BMP");
    QTest::newRow("as large as can be") << pictureOf(bound);
}

void BoundedNetworkAccessTest::loadsPictures()
{
    QFETCH(const QByteArray, body);
    m_server->route("/logo", FaultResponse::of("application/octet-stream", body));
    const auto reply = get(m_server->url("/logo"));
    QCOMPARE(reply->error(), QNetworkReply::NoError);
    QCOMPARE(reply->readAll(), body);
    // From the disk it is the same.
    QCOMPARE(get(m_server->url("/logo"))->readAll(), body);
}

void BoundedNetworkAccessTest::refuses_data()
{
    using Framing = FaultResponse::Framing;
    QTest::addColumn<FaultResponse>("response");
    QTest::newRow("announced too large") << FaultResponse::of("image/png", pictureOf(bound + 1));
    QTest::newRow("too large in chunks") << unannounced(bound + (1 << 17), Framing::Chunked);
    QTest::newRow("without end") << unannounced(RepeatedBody::endless, Framing::UntilClose);
    QTest::newRow("gzip bomb") << FaultResponse::gzipBomb();
    QTest::newRow("SVG") << FaultResponse::of("image/svg+xml",
                                              "<svg xmlns='http://www.w3.org/2000/svg'/>");
    QTest::newRow("SVG said to be PNG")
        << FaultResponse::of("image/png", "<?xml version='1.0'?><svg/>");
    QTest::newRow("HTML") << FaultResponse::of("text/html", "<!DOCTYPE html><html></html>");
    FaultResponse trickle = FaultResponse::of("image/svg+xml", "<svg xmlns='x'><g/></svg>");
    trickle.dripSize = 3;
    trickle.dripInterval = 1ms;
    QTest::newRow("SVG in pieces") << trickle;
}

void BoundedNetworkAccessTest::refuses()
{
    QFETCH(const FaultResponse, response);
    m_server->route("/bad", response);
    for (int attempt = 0; attempt < 2; ++attempt) {
        QVERIFY(get(m_server->url("/bad"))->error() != QNetworkReply::NoError);
        QVERIFY(sizeOf(m_folder->path()) < bound);
    }
    QVERIFY(QTest::qWaitFor([&] { return m_server->openConnections() == 0; }, 30'000));
}

void BoundedNetworkAccessTest::givesUpWhatTrickles()
{
    use(300ms);
    FaultResponse response = FaultResponse::of("image/png", pictureOf(100'000));
    response.dripInterval = 20ms;
    m_server->route("/slow", response);
    QCOMPARE(get(m_server->url("/slow"))->error(), QNetworkReply::OperationCanceledError);
    m_server->hold("/silent");
    QCOMPARE(get(m_server->url("/silent"))->error(), QNetworkReply::OperationCanceledError);
}

void BoundedNetworkAccessTest::followsRedirectsWithinTheWebOnly_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<bool>("followed");
    QTest::newRow("to a path") << QByteArray("/logo") << true;
    QTest::newRow("to a file") << QByteArray("file:///proc/self/exe") << false;
    QTest::newRow("to data") << QByteArray("data:image/png;base64,") + picture().toBase64()
                             << false;
    QTest::newRow("to itself") << QByteArray("/moved") << false;
}

void BoundedNetworkAccessTest::followsRedirectsWithinTheWebOnly()
{
    QFETCH(const QByteArray, location);
    QFETCH(const bool, followed);
    m_server->route("/logo", FaultResponse::of("image/png", picture()));
    FaultResponse moved;
    moved.status = 302;
    moved.headers = {{"Location", location}};
    m_server->route("/moved", moved);
    const auto reply = get(m_server->url("/moved"));
    QCOMPARE(reply->error() == QNetworkReply::NoError, followed);
    QCOMPARE(reply->readAll(), followed ? picture() : QByteArray());
}

void BoundedNetworkAccessTest::asksOnlyOnce()
{
    m_server->route("/once", FaultResponse::of("image/png", picture()));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(get(m_server->url("/once"))->readAll(), picture());
    QCOMPARE(m_server->requestCount("/once"), 1);

    const auto file = get(QUrl(u"file:///proc/self/exe"_s));
    QVERIFY(file->error() != QNetworkReply::NoError);
    QCOMPARE(file->readAll(), QByteArray());
}

void BoundedNetworkAccessTest::cacheStaysWithinItsBound()
{
    m_server->route("/large", FaultResponse::of("image/png", pictureOf(bound)));
    for (qint64 i = 0; i < BoundedNetworkAccess::maximumCacheSize / bound + 4; ++i)
        QCOMPARE(get(m_server->url("/large?" + QByteArray::number(i)))->error(),
                 QNetworkReply::NoError);
    const qint64 size = sizeOf(m_folder->path());
    // Room is made before a picture is added.
    QVERIFY2(size < BoundedNetworkAccess::maximumCacheSize + 2 * bound,
             qPrintable(QString::number(size)));
    QVERIFY(size > 4 * bound);
}

QTEST_GUILESS_MAIN(BoundedNetworkAccessTest)
#include "tst_boundednetworkaccess.moc"
