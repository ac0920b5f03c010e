#include "platform/qt/FileUserDefaults.h"

#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
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

UserDefaultsError errorOf(const FileWriteError &error)
{
    switch (error.kind) {
    case FileWriteError::Kind::NoSpace:
        return {UserDefaultsError::Kind::NoSpace};
    case FileWriteError::Kind::NotPermitted:
        return {UserDefaultsError::Kind::NotPermitted};
    case FileWriteError::Kind::Failed:
        return {UserDefaultsError::Kind::Failed};
    }
    Q_UNREACHABLE();
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
    const auto stored = replaceFile(path(key), value, ownerOnly);
    if (!stored)
        return std::unexpected(errorOf(stored.error()));
    return {};
}

std::expected<void, UserDefaultsError> FileUserDefaults::remove(const QString &key)
{
    QFile file(path(key));
    if (file.exists() && !file.remove())
        return std::unexpected(errorOf(file));
    return {};
}

std::expected<void, UserDefaultsError> FileUserDefaults::setAside(const QString &key)
{
    QFile file(path(key));
    if (!file.exists())
        return {};
    // No key's file has a blank in its name, and one that was set aside before stays.
    QString aside;
    int number = 0;
    do {
        aside = path(key) + QStringLiteral(" (unreadable %1)").arg(++number);
    } while (QFile::exists(aside));
    if (!file.rename(aside))
        return std::unexpected(errorOf(file));
    return {};
}

} // namespace lumaro
