#pragma once

#include <QByteArray>
#include <QString>

#include <expected>
#include <optional>

namespace lumaro {

/// Why a value could not be stored; the value stored before is untouched.
struct UserDefaultsError
{
    enum class Kind {
        NoSpace,
        NotPermitted,
        Failed,
    };
    Kind kind = Kind::Failed;

    /// An English sentence for the user.
    QString description() const;

    bool operator==(const UserDefaultsError &) const = default;
};

/// The user's settings and saved data: named values that outlive the process. A write either
/// happens whole or not at all. Any thread, but the calls for one key one after another.
class UserDefaults
{
public:
    UserDefaults() = default;
    UserDefaults(const UserDefaults &) = delete;
    UserDefaults &operator=(const UserDefaults &) = delete;
    virtual ~UserDefaults() = default;

    /// Empty when nothing is stored under `key` or it cannot be read.
    virtual std::optional<QByteArray> data(const QString &key) const = 0;

    /// Stores `value`, on disk before it returns.
    virtual std::expected<void, UserDefaultsError> setData(const QString &key,
                                                           const QByteArray &value) = 0;

    virtual std::expected<void, UserDefaultsError> remove(const QString &key) = 0;

    /// Keeps what is stored under `key`, readable or not, in another place where no key finds it,
    /// for somebody to rescue by hand. Nothing is stored under `key` then. Does nothing when
    /// nothing is.
    virtual std::expected<void, UserDefaultsError> setAside(const QString &key) = 0;
};

} // namespace lumaro
