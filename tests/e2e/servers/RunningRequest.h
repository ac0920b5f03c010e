#pragma once

#include "platform/HttpClient.h"

#include <memory>
#include <optional>

namespace lumaro {

/// A request under way, and what came of it.
class RunningRequest
{
public:
    using Result = std::expected<HttpResponse, HttpError>;

    explicit RunningRequest(Task<Result> task) { watch(std::move(task)); }

    bool isFinished() const { return m_outcome->has_value(); }
    const Result &result() const { return **m_outcome; }

private:
    void watch(Task<Result> task)
    {
        std::move(task).then(
            [outcome = m_outcome](Result result) { outcome->emplace(std::move(result)); });
    }

    std::shared_ptr<std::optional<Result>> m_outcome = std::make_shared<std::optional<Result>>();
};

} // namespace lumaro
