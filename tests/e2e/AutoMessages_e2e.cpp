// The automatic messages as the server sees them: the real program launches the
// stand-in server and types its chat lines into the server's console window, at the
// message interval and at the text rate.
#include "AutomationRun.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace e2e;
using Clock = std::chrono::steady_clock;

namespace {

// The program's "second" in these runs: a three-minute interval passes in 3.6 s.
constexpr int kSecondMs = 20;
constexpr int kIntervalMs = 180 * kSecondMs;

// How far one typed character may land from the text rate. The typist's timer keeps
// to its interval within 5 % (at 110 ms its ticks come 105, 105, 115 ms apart), and each gap is
// measured in another process (the server stamps a key when its event loop gets to it), so a gap is
// also off by two scheduling delays. 15 ms covers that on a busy two-core machine while still
// telling 50 ms from 110 ms, or one character per tick from two.
constexpr qint64 kKeyJitterMs = 15;

Seed MessagesInBoxesZeroAndTwo(int textRate) {
    Seed seed;
    seed.messages = {"hello one", "", "third box", ""};
    seed.textRate = QString::number(textRate);
    return seed;
}

std::string Describe(const std::vector<qint64>& gaps) {
    std::string text;
    for (qint64 gap : gaps)
        text += std::to_string(gap) + " ";
    return text;
}

class TextRateTest : public testing::TestWithParam<int> {};

TEST_P(TextRateTest, BatchesArriveEveryIntervalInBoxOrderAtTheTextRate) {
    const int rate = GetParam();
    AutomationRun run(MessagesInBoxesZeroAndTwo(rate), kSecondMs);
    ASSERT_NE(run.MainWindow(), 0u) << run.desktop().WindowTitles().join(", ").toStdString();

    ASSERT_TRUE(run.ClickLaunch());
    const auto launched = Clock::now();
    ASSERT_TRUE(run.desktop().WaitForWindow(kServerTitle, TitleMatch::Exact, 20s));

    ASSERT_TRUE(run.WaitForTranscript(1, 30s)) << "no chat line within 30 s";
    const auto firstLine = Clock::now() - launched;
    ASSERT_TRUE(run.WaitForTranscript(4, 30s)) << run.Transcript().join(" | ").toStdString();

    EXPECT_EQ(run.Transcript(),
              QStringList({"say hello one", "say third box", "say hello one", "say third box"}));
    // A timer tick may come at most 5 % early; typing the line adds to that.
    EXPECT_GE(firstLine, std::chrono::milliseconds(kIntervalMs * 95 / 100));

    const auto lines = KeyLines(run.Keys());
    ASSERT_GE(lines.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE("line " + std::to_string(i + 1));
        EXPECT_EQ(Text(lines[i]), run.Transcript().value(int(i)));
        const std::vector<qint64> gaps = Gaps(lines[i]);
        EXPECT_NEAR(Median(gaps), rate, kKeyJitterMs) << Describe(gaps);
        // The first key of a line may wait for the window manager to hand the console
        // the focus, which shortens the gap after it; never to two keys in one tick.
        EXPECT_GT(gaps.front(), rate / 2) << Describe(gaps);
        EXPECT_GE(*std::min_element(gaps.begin() + 1, gaps.end()), rate - kKeyJitterMs)
            << Describe(gaps);
    }

    // The second line of a batch waits for the typist to finish the first (one more
    // tick) and for the next dispatcher tick, then one more tick for its first key.
    for (std::size_t i : {1u, 3u}) {
        const qint64 pause = lines[i].front().ms - lines[i - 1].back().ms;
        EXPECT_GE(pause, 2 * rate - kKeyJitterMs) << "before line " << i + 1;
        EXPECT_LE(pause, 2 * rate + kSecondMs + 3 * kKeyJitterMs) << "before line " << i + 1;
    }

    // From batch to batch: the interval, give or take where the dispatcher and the
    // typist stood when each batch was queued. Ticks never come late by more than
    // their own interval without the timer skipping them, so lateness on a loaded
    // machine only adds; 10 % of the interval bounds it.
    const qint64 batchGap = lines[2].front().ms - lines[0].front().ms;
    EXPECT_GE(batchGap, kIntervalMs - kSecondMs - rate - kKeyJitterMs);
    EXPECT_LE(batchGap, kIntervalMs * 110 / 100);
}

INSTANTIATE_TEST_SUITE_P(Rates, TextRateTest, testing::Values(110, 50),
                         [](const testing::TestParamInfo<int>& info) {
                             return "TextRate" + std::to_string(info.param);
                         });

// SLOW: about three real minutes. The one run at the shipped timing: real seconds and
// the default three-minute interval, so nothing of the short test timing hides a
// wrong unit or a wrong default.
TEST(DefaultTiming, SlowTheFirstLineComesThreeRealMinutesAfterLaunch) {
    Seed seed;
    seed.messages = {"hello one", "", "third box", ""};
    AutomationRun run(seed, std::nullopt);
    ASSERT_NE(run.MainWindow(), 0u);

    ASSERT_TRUE(run.ClickLaunch());
    const auto launched = Clock::now();
    ASSERT_TRUE(run.desktop().WaitForWindow(kServerTitle, TitleMatch::Exact, 20s));

    // 180 s of countdown, up to one more second for the dispatcher, then "say hello
    // one" and Enter at the default 110 ms a key.
    const auto typing = std::chrono::milliseconds(14 * 110);
    ASSERT_TRUE(run.WaitForTranscript(1, 200s + typing));
    const auto firstLine = Clock::now() - launched;
    EXPECT_EQ(run.Transcript().value(0), "say hello one");
    EXPECT_GE(firstLine, 179s);
    EXPECT_LE(firstLine, 185s + typing);
}

} // namespace
