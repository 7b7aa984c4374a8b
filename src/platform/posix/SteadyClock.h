#pragma once

#include "platform/Clock.h"

#include <chrono>

class SteadyClock : public Clock {
public:
    std::int64_t NowMs() override {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }
};
