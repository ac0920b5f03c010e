#pragma once

#include "platform/InputMonitor.h"

namespace lumaro {

/// Keys and mouse movements that the test makes.
class FakeInputMonitor final : public InputMonitor
{
public:
    void setKeyDownHandler(std::function<bool(const KeyDown &)> handler) override
    {
        keyDown = std::move(handler);
    }
    void setMouseMovedHandler(std::function<void(QObject *)> handler) override
    {
        mouseMoved = std::move(handler);
    }

    std::function<bool(const KeyDown &)> keyDown;
    std::function<void(QObject *)> mouseMoved;
};

} // namespace lumaro
