#include "platform/qt/BoundedNetworkAccess.h"

#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>

#include <chrono>

namespace lumaro {

namespace {

constexpr std::chrono::milliseconds patience = std::chrono::seconds(15);

class BoundedManager final : public QNetworkAccessManager
{
public:
    using QNetworkAccessManager::QNetworkAccessManager;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &original,
                                 QIODevice *outgoingData) override
    {
        QNetworkRequest request(original);
        // A logo hardly ever changes; a list that is scrolled asks for it again and again.
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                             QNetworkRequest::PreferCache);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::NoLessSafeRedirectPolicy);
        QNetworkReply *reply =
            QNetworkAccessManager::createRequest(operation, request, outgoingData);
        connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received) {
            if (received > BoundedNetworkAccess::maximumPictureSize)
                reply->abort();
        });
        return reply;
    }
};

} // namespace

BoundedNetworkAccess::BoundedNetworkAccess(QString cacheFolder)
    : m_cacheFolder(std::move(cacheFolder))
{
}

QNetworkAccessManager *BoundedNetworkAccess::create(QObject *parent)
{
    auto *manager = new BoundedManager(parent);
    auto *cache = new QNetworkDiskCache(manager);
    cache->setCacheDirectory(m_cacheFolder);
    cache->setMaximumCacheSize(maximumCacheSize);
    manager->setCache(cache);
    manager->setTransferTimeout(int(patience.count()));
    return manager;
}

} // namespace lumaro
