#pragma once

#include <QQmlNetworkAccessManagerFactory>
#include <QString>

#include <chrono>

namespace lumaro {

/// Network access for the pictures that views load by address: over HTTP and HTTPS, made of pixels,
/// kept on disk up to a bound, each no larger than a bound, given up after a while. create() is
/// called on any thread.
class BoundedNetworkAccess final : public QQmlNetworkAccessManagerFactory
{
public:
    static constexpr qint64 maximumPictureSize = 4 * 1024 * 1024;
    static constexpr qint64 maximumCacheSize = 64 * 1024 * 1024;

    /// A picture that has not arrived whole within `patience` is given up.
    explicit BoundedNetworkAccess(QString cacheFolder,
                                  std::chrono::milliseconds patience = std::chrono::seconds(15));

    QNetworkAccessManager *create(QObject *parent) override;

private:
    QString m_cacheFolder;
    std::chrono::milliseconds m_patience;
};

} // namespace lumaro
