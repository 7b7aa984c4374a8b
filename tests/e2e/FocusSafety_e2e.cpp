// An operator working in another window while a chat line is being typed: the program
// brings the server console back before every key, so the line reaches the server whole
// and the other window gets nothing.
#include "AutomationRun.h"

#include <gtest/gtest.h>

using namespace e2e;

namespace {

// A 15-minute interval of 10 ms seconds: 9 s from launch to the long line.
constexpr int kSecondMs = 10;
constexpr int kTextRate = 110;
constexpr int kInterferences = 6;

// 120 characters without any of the key language's special characters; capitals are
// typed with Shift, so a focus change between Shift and the letter would show too.
const QString kLongMessage =
    QStringLiteral("Welcome to the Hostwarden test server, please keep the chat friendly and "
                   "read the Rules at the Spawn point, then go Play");

TEST(FocusSafety, ClicksIntoAnotherWindowWhileTypingLoseNoKey) {
    ASSERT_EQ(kLongMessage.size(), 120);
    Seed seed;
    seed.messages = {kLongMessage, "", "", ""};
    seed.textRate = QString::number(kTextRate);
    seed.msgRate = "15";
    AutomationRun run(seed, kSecondMs);
    ASSERT_NE(run.MainWindow(), 0u) << run.desktop().WindowTitles().join(", ").toStdString();
    const Desktop& desktop = run.desktop();

    ASSERT_TRUE(run.ClickLaunch());
    ASSERT_TRUE(desktop.WaitForWindow(kServerTitle, TitleMatch::Exact, 20s));
    ASSERT_TRUE(WaitUntil([&] { return !run.Keys().empty(); }, 30s)) << "typing never began";
    // The operator turns "Auto Message" off, which also keeps the next batch (due in
    // 9 s) out of the probe below; the line being typed goes on.
    ASSERT_TRUE(run.ClickMain(kAutoMessageBox));

    QTemporaryDir scratch;
    const QString other = scratch.filePath("OTHER");
    Process xterm("xterm", {"-T", "other", "-e", "sh", "-c", "cat > '" + other + "'"},
                  ProcessOptions{run.session().Environment(), {}, {}, {}});
    const auto otherId = desktop.WaitForWindow("other", TitleMatch::Exact, 10s);
    ASSERT_TRUE(otherId);

    // Every 15 keys or so (or 2 s, should the keys stop coming), click into the other
    // window and activate it, as an operator would, and note whether it really held
    // the focus for a moment.
    const std::size_t lineKeys = std::size_t(4 + kLongMessage.size() + 1);
    int stolen = 0;
    for (int round = 0; round < kInterferences; ++round) {
        const std::size_t target = std::min(lineKeys - 5, run.Keys().size() + 15);
        WaitUntil([&] { return run.Keys().size() >= target; }, 2s);
        desktop.Click(*otherId, {40, 40});
        desktop.Run("xdotool", {"windowactivate", QString::number(*otherId)});
        if (desktop.ActiveWindow() == otherId || desktop.FocusedWindow() == otherId)
            ++stolen;
    }
    EXPECT_GT(stolen, 0) << "the other window never held the focus: nothing was tested";

    // On failure, go on to the other window: what it caught tells where the keys went.
    EXPECT_TRUE(run.WaitForTranscript(1, 30s)) << "the line never ended";
    EXPECT_EQ(run.Transcript(), QStringList{"say " + kLongMessage});
    const auto lines = KeyLines(run.Keys());
    EXPECT_EQ(lines.size(), 1u);
    if (!lines.empty()) {
        EXPECT_EQ(Text(lines[0]), "say " + kLongMessage) << "keys the server saw";
    }

    // Anything typed into the other window would sit in its terminal line until a
    // line end; our own probe and its Return flush it out together.
    ASSERT_TRUE(desktop.Activate(*otherId));
    ASSERT_TRUE(desktop.TypeText("probe"));
    ASSERT_TRUE(desktop.PressKey("Return"));
    EXPECT_TRUE(WaitUntil([&] { return ReadBytes(other).endsWith('\n'); }, 10s));
    EXPECT_EQ(ReadBytes(other), "probe\n");
}

} // namespace
