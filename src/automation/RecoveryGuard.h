#pragma once

#include <cstdint>
#include <deque>

// Keeps automatic relaunches from looping: at most kRelaunches within kWindowMs.
class RecoveryGuard {
public:
    static constexpr int kRelaunches = 3;
    static constexpr std::int64_t kWindowMs = 10 * 60 * 1000;

    // Whether one more relaunch at `nowMs` is allowed; an allowed one is counted.
    bool Allow(std::int64_t nowMs);
    // Relaunches counted within the window that ended at the last Allow.
    int Count() const { return int(times_.size()); }
    // An operator's own launch starts the count afresh.
    void Reset() { times_.clear(); }

private:
    std::deque<std::int64_t> times_;
};
