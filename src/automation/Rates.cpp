#include "automation/Rates.h"

#include <algorithm>
#include <cmath>

namespace {

// Reads a decimal number (fraction allowed, rounded to the nearest whole number) and
// clamps it; huge values clamp instead of counting as unreadable.
int ClampStored(const QString& stored, int low, int high, int fallback) {
    bool ok = false;
    const double value = stored.trimmed().toDouble(&ok);
    if (!ok || std::isnan(value))
        return fallback;
    return static_cast<int>(std::lround(std::clamp(value, double(low), double(high))));
}

} // namespace

std::int16_t ClampMessageRate(const QString& stored) {
    return static_cast<std::int16_t>(
        ClampStored(stored, kMinMessageRate, kMaxMessageRate, kDefaultMessageRate));
}

int ClampTextRate(const QString& stored) {
    return ClampStored(stored, kMinTextRate, kMaxTextRate, kDefaultTextRate);
}
