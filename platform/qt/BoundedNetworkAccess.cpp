#include "platform/qt/BoundedNetworkAccess.h"

#include <QDateTime>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>
#include <array>

namespace lumaro {

namespace {

constexpr int maximumRedirects = 10;
constexpr qint64 signatureSize = 12;

/// Pictures made of pixels. A drawing such as SVG can name local files, which its reader opens,
/// and can take for ever to draw.
bool mayBePicture(QByteArrayView beginning)
{
    constexpr std::array<QByteArrayView, 6> signatures{"\x89PNG", "\xFF\xD8\xFF", "GIF8",
                                                       "RIFF",    "BM",           {"\0\0\1\0", 4}};
    return std::ranges::any_of(signatures, [beginning](QByteArrayView signature) {
        return beginning.startsWith(signature);
    });
}

/// Of what has arrived so far; whoever asked for the picture reads nothing before the end.
bool isAcceptable(QNetworkReply &reply)
{
    // What is kept has been looked at before.
    if (reply.attribute(QNetworkRequest::SourceIsFromCacheAttribute).toBool())
        return true;
    if (reply.bytesAvailable() > BoundedNetworkAccess::maximumPictureSize)
        return false;
    const QByteArray beginning = reply.peek(signatureSize);
    return beginning.size() < signatureSize || mayBePicture(beginning);
}

/// Most servers do not say how long a logo stays good, and Qt then asks them each time anew.
class LogoCache final : public QNetworkDiskCache
{
public:
    using QNetworkDiskCache::QNetworkDiskCache;

    QIODevice *prepare(const QNetworkCacheMetaData &original) override
    {
        QNetworkCacheMetaData metaData(original);
        const QDateTime soonest = QDateTime::currentDateTimeUtc().addDays(7);
        if (!(metaData.expirationDate() > soonest))
            metaData.setExpirationDate(soonest);
        return QNetworkDiskCache::prepare(metaData);
    }
};

class BoundedManager final : public QNetworkAccessManager
{
public:
    BoundedManager(std::chrono::milliseconds patience, QObject *parent)
        : QNetworkAccessManager(parent)
        , m_patience(patience)
    {
    }

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &original,
                                 QIODevice *outgoingData) override
    {
        QNetworkRequest request(original);
        const QString scheme = request.url().scheme();
        if (scheme != u"http" && scheme != u"https")
            request.setUrl({});
        // A logo hardly ever changes; a list that is scrolled asks for it again and again.
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                             QNetworkRequest::PreferCache);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::NoLessSafeRedirectPolicy);
        request.setMaximumRedirectsAllowed(maximumRedirects);
        // Pictures are packed already; what comes packed once more, Qt then leaves as it is.
        request.setRawHeader("Accept-Encoding", "identity");
        QNetworkReply *reply =
            QNetworkAccessManager::createRequest(operation, request, outgoingData);
        // Else Qt goes on reading for as long as a fast server does not pause.
        reply->setReadBufferSize(2 * BoundedNetworkAccess::maximumPictureSize);
        connect(reply, &QNetworkReply::metaDataChanged, reply, [reply] {
            if (reply->header(QNetworkRequest::ContentLengthHeader).toLongLong()
                > BoundedNetworkAccess::maximumPictureSize)
                reply->abort();
        });
        connect(reply, &QNetworkReply::readyRead, reply, [reply] {
            if (!isAcceptable(*reply))
                reply->abort();
        });
        // Not only for silence: a few servers that trickle would keep all others waiting.
        QTimer::singleShot(m_patience, reply, &QNetworkReply::abort);
        return reply;
    }

private:
    std::chrono::milliseconds m_patience;
};

} // namespace

BoundedNetworkAccess::BoundedNetworkAccess(QString cacheFolder, std::chrono::milliseconds patience)
    : m_cacheFolder(std::move(cacheFolder))
    , m_patience(patience)
{
}

QNetworkAccessManager *BoundedNetworkAccess::create(QObject *parent)
{
    auto *manager = new BoundedManager(m_patience, parent);
    auto *cache = new LogoCache(manager);
    cache->setCacheDirectory(m_cacheFolder);
    cache->setMaximumCacheSize(maximumCacheSize);
    manager->setCache(cache);
    return manager;
}

} // namespace lumaro
