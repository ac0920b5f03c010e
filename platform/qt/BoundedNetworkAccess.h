#pragma once

#include <QQmlNetworkAccessManagerFactory>
#include <QString>

namespace lumaro {

/// Network access for the pictures that views load by address: kept on disk up to a bound, each
/// no larger than a bound, given up after a while. create() is called on any thread.
class BoundedNetworkAccess final : public QQmlNetworkAccessManagerFactory
{
public:
    static constexpr qint64 maximumPictureSize = 4 * 1024 * 1024;
    static constexpr qint64 maximumCacheSize = 64 * 1024 * 1024;

    explicit BoundedNetworkAccess(QString cacheFolder);

    QNetworkAccessManager *create(QObject *parent) override;

private:
    QString m_cacheFolder;
};

} // namespace lumaro
