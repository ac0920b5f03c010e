#pragma once

#include "platform/UserDefaults.h"

#include <QHash>

namespace lumaro {

/// Values kept in memory; can be made to refuse every write.
class FakeUserDefaults final : public UserDefaults
{
public:
    std::optional<QByteArray> data(const QString &key) const override
    {
        const auto found = values.constFind(key);
        return found == values.cend() ? std::nullopt : std::optional(*found);
    }
    std::expected<void, UserDefaultsError> setData(const QString &key,
                                                   const QByteArray &value) override
    {
        if (failure)
            return std::unexpected(*failure);
        values.insert(key, value);
        return {};
    }
    std::expected<void, UserDefaultsError> remove(const QString &key) override
    {
        if (failure)
            return std::unexpected(*failure);
        values.remove(key);
        return {};
    }

    QHash<QString, QByteArray> values;
    std::optional<UserDefaultsError> failure;
};

} // namespace lumaro
