#pragma once

#include "platform/UserDefaults.h"

namespace lumaro {

/// One file for each key in a folder, replaced atomically and readable by its owner only.
class FileUserDefaults final : public UserDefaults
{
public:
    /// The folder is made when something is first stored.
    explicit FileUserDefaults(QString folder);

    std::optional<QByteArray> data(const QString &key) const override;
    std::expected<void, UserDefaultsError> setData(const QString &key,
                                                   const QByteArray &value) override;
    std::expected<void, UserDefaultsError> remove(const QString &key) override;
    /// The file keeps its name and gets a number after it.
    std::expected<void, UserDefaultsError> setAside(const QString &key) override;

private:
    QString path(const QString &key) const;

    QString m_folder;
};

} // namespace lumaro
