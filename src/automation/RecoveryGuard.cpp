#include "automation/RecoveryGuard.h"

bool RecoveryGuard::Allow(std::int64_t nowMs) {
    while (!times_.empty() && nowMs - times_.front() >= kWindowMs)
        times_.pop_front();
    if (int(times_.size()) >= kRelaunches)
        return false;
    times_.push_back(nowMs);
    return true;
}
