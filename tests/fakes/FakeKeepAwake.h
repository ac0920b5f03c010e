#pragma once

#include "platform/KeepAwake.h"

namespace lumaro {

class FakeKeepAwake final : public KeepAwake
{
public:
    void keepAwake(const QString &) override
    {
        isAwake = true;
        ++requests;
    }
    void release() override { isAwake = false; }

    bool isAwake = false;
    int requests = 0;
};

} // namespace lumaro
