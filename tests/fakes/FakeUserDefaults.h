#pragma once

#include "platform/UserDefaults.h"

#include <QHash>
#include <QList>

namespace lumaro {

/// Values kept in memory; can be made to refuse every write and to fail at reading.
class FakeUserDefaults final : public UserDefaults
{
public:
    std::optional<QByteArray> data(const QString &key) const override
    {
        const auto found = values.constFind(key);
        if (unreadable)
            return std::nullopt;
        return found == values.cend() ? std::nullopt : std::optional(*found);
    }
    std::expected<void, UserDefaultsError> setData(const QString &key,
                                                   const QByteArray &value) override
    {
        if (failure)
            return std::unexpected(*failure);
        values.insert(key, value);
        ++writes;
        return {};
    }
    std::expected<void, UserDefaultsError> remove(const QString &key) override
    {
        if (failure)
            return std::unexpected(*failure);
        values.remove(key);
        return {};
    }
    std::expected<void, UserDefaultsError> setAside(const QString &key) override
    {
        if (failure)
            return std::unexpected(*failure);
        if (const auto found = values.constFind(key); found != values.cend())
            setAsideValues.append(*found);
        values.remove(key);
        return {};
    }

    QHash<QString, QByteArray> values;
    QList<QByteArray> setAsideValues;
    /// How many values have been stored.
    int writes = 0;
    bool unreadable = false;
    std::optional<UserDefaultsError> failure;
};

} // namespace lumaro
