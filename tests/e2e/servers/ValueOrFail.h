#pragma once

#include <QString>
#include <QTest>

#include <expected>
#include <utility>

namespace lumaro {

/// The value of `result`; without one the running test fails and a default value is returned.
template <typename T>
T valueOrFail(std::expected<T, QString> result)
{
    if (result)
        return std::move(*result);
    QTest::qFail(qPrintable(result.error()), __FILE__, __LINE__);
    return {};
}

} // namespace lumaro
