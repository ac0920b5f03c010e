#pragma once

#include "platform/ScreenCapture.h"

namespace lumaro {

/// A queue that does what is posted when the test says so.
class FakeSerialQueue final : public SerialQueue
{
public:
    ~FakeSerialQueue() override { run(); }
    void post(std::function<void()> work) override { m_work.append(std::move(work)); }
    void drain() override { run(); }
    void run()
    {
        while (!m_work.isEmpty())
            m_work.takeFirst()();
    }

private:
    QList<std::function<void()>> m_work;
};

/// A screen that shows what the test says.
class FakeScreenCapture final : public ScreenCapture
{
public:
    struct Stream final : CaptureStream
    {
        explicit Stream(FakeScreenCapture &owner_)
            : owner(owner_)
        {
        }
        ~Stream() override { ++owner.destroyedStreams; }
        Task<Result<void>> startCapture(std::stop_token) override
        {
            if (!owner.streamError.isEmpty())
                co_return std::unexpected(owner.streamError);
            co_return {};
        }
        void setSource(const CaptureArea &source) override { owner.sources.append(source); }
        Task<> stopCapture() override
        {
            ++owner.stops;
            if (owner.stopping)
                co_await *owner.stopping;
        }
        FakeScreenCapture &owner;
    };

    bool preflightAccess() const override { return allowed; }
    bool requestAccess() override
    {
        ++accessRequests;
        return allowedWhenAsked;
    }
    std::optional<KeyWindow> keyWindow() const override { return key; }
    QRectF convertToWindow(QQuickItem *, const QRectF &rect) const override
    {
        return rect.translated(viewOrigin);
    }
    Task<Result<ShareableContent>> shareableContent(std::stop_token) override
    {
        ++contentRequests;
        const Result<ShareableContent> answer = content;
        co_return answer;
    }
    std::unique_ptr<CaptureStream> makeStream(const CaptureConfiguration &asked,
                                              CaptureOutput to) override
    {
        configuration = asked;
        output.emplace(std::move(to));
        return std::make_unique<Stream>(*this);
    }

    bool allowed = true;
    bool allowedWhenAsked = false;
    int accessRequests = 0;
    std::optional<KeyWindow> key = KeyWindow{.number = 7, .backingScaleFactor = 1};
    QPointF viewOrigin;
    Result<ShareableContent> content;
    int contentRequests = 0;
    QString streamError;
    CaptureConfiguration configuration;
    std::optional<CaptureOutput> output;
    QList<CaptureArea> sources;
    int stops = 0;
    /// Streams that are stopped wait for it.
    std::optional<OneShot<bool>> stopping;
    int destroyedStreams = 0;
};

} // namespace lumaro
