#pragma once

#include <cstdint>

// Milliseconds on a clock that never goes back (not the time of day).
class Clock {
public:
    virtual ~Clock() = default;
    virtual std::int64_t NowMs() = 0;
};
