#include "automation/Rates.h"

#include <gtest/gtest.h>

namespace {

// A hand-edited rate is clamped into its dialog's range when read; text that is no number
// gives the default.
TEST(Rates, StoredRatesAreClampedIntoTheirRanges) {
    const char *const huge = "99999999999999999999", *const minusHuge = "-99999999999999999999";
    const struct {
        const char* stored;
        int messageRate, textRate;
    } rows[] = {{"", 3, 110},       {"abc", 3, 110},  {"12abc", 3, 110}, {"0", 3, 10},
                {"-7", 3, 10},      {"3", 3, 10},     {"5", 5, 10},      {" 7 ", 7, 10},
                {"10", 10, 10},     {"15", 15, 15},   {"16", 15, 16},    {"50", 15, 50},
                {"210", 15, 210},   {"211", 15, 210}, {"547", 15, 210},  {"4.4", 4, 10},
                {"120.6", 15, 121}, {huge, 15, 210},  {minusHuge, 3, 10}};
    for (const auto& row : rows) {
        EXPECT_EQ(ClampMessageRate(row.stored), row.messageRate) << row.stored;
        EXPECT_EQ(ClampTextRate(row.stored), row.textRate) << row.stored;
    }
}

} // namespace
