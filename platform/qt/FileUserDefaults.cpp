#include "platform/qt/FileUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QUrl>

namespace lumaro {

namespace {

UserDefaultsError errorOf(const QFileDevice &file)
{
    switch (file.error()) {
    case QFileDevice::ResourceError:
        return {UserDefaultsError::Kind::NoSpace};
    case QFileDevice::OpenError:
    case QFileDevice::PermissionsError:
        return {UserDefaultsError::Kind::NotPermitted};
    default:
        return {UserDefaultsError::Kind::Failed};
    }
}

} // namespace

FileUserDefaults::FileUserDefaults(QString folder)
    : m_folder(std::move(folder))
{
}

QString FileUserDefaults::path(const QString &key) const
{
    return m_folder + u'/' + QString::fromLatin1(QUrl::toPercentEncoding(key));
}

std::optional<QByteArray> FileUserDefaults::data(const QString &key) const
{
    QFile file(path(key));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray value = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return value;
}

std::expected<void, UserDefaultsError> FileUserDefaults::setData(const QString &key,
                                                                 const QByteArray &value)
{
    constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    if (!QDir().mkpath(m_folder))
        return std::unexpected(UserDefaultsError{UserDefaultsError::Kind::NotPermitted});
    QSaveFile file(path(key));
    // Permissions come before the content, so that nobody else can read it even for a moment.
    const bool stored = file.open(QIODevice::WriteOnly) && file.setPermissions(ownerOnly)
        && file.write(value) == value.size() && file.commit();
    if (!stored)
        return std::unexpected(errorOf(file));
    return {};
}

std::expected<void, UserDefaultsError> FileUserDefaults::remove(const QString &key)
{
    QFile file(path(key));
    if (file.exists() && !file.remove())
        return std::unexpected(errorOf(file));
    return {};
}

} // namespace lumaro
