// Where the automatic messages' keys go: only into the launched server's console, wherever
// it stands, and never while the operator answers one of the program's questions.
#include "Journey.h"

#include <signal.h>

using namespace e2e;

namespace {

constexpr int kSecondMs = 20, kIntervalMs = 180 * kSecondMs;
constexpr auto kInterval = std::chrono::milliseconds(kIntervalMs);

const QString kDecoyTitle = "notes about red faction dedicated server.txt - editor";

// A window that only mentions the server, opened above the console, and the console moved
// to another desktop: the line, letters outside ASCII included, reaches the console, which
// comes to the operator's desktop; the other window gets nothing. With the server gone, the
// next due line finds no console although the other window is still there.
TEST_F(Journey, KeysReachOnlyTheServerConsoleWhereverItIs) {
    const QString message = QString::fromUtf8("caf\u00e9 \u00df \u20ac \U0001F600 ok");
    ASSERT_NO_FATAL_FAILURE(StartMain(
        {.startup = {"TextRate=50", "ServRec=0"}, .messages = {message, "", "", ""}}, kSecondMs));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const auto console = desktop_.WaitFor(kServerTitle);
    ASSERT_TRUE(console);
    ASSERT_TRUE(desktop_.Run("xdotool", {"set_num_desktops", "2"}));
    ASSERT_TRUE(
        desktop_.Run("xdotool", {"set_desktop_for_window", QString::number(*console), "1"}));
    const QString decoyFile = gameParent_.filePath("DECOY");
    Process decoy("xterm", {"-T", kDecoyTitle, "-e", "sh", "-c", "cat > '" + decoyFile + "'"},
                  desktop_.Environment());
    const auto decoyId = desktop_.WaitFor(kDecoyTitle);
    ASSERT_TRUE(decoyId && desktop_.Activate(*decoyId));

    ASSERT_TRUE(WaitForTranscript(1, kInterval + 30s)) << Windows();
    EXPECT_EQ(Transcript(),
              QStringList{"say " + QString::fromUtf8("caf\u00e9 \u00df \u20ac ? ok")});
    EXPECT_EQ(desktop_.Run("xdotool", {"get_desktop"}).value_or("").trimmed(), "0");
    EXPECT_EQ(desktop_.Run("xdotool", {"get_desktop_for_window", QString::number(*console)})
                  .value_or("")
                  .trimmed(),
              "0");

    ASSERT_EQ(StartedPids().size(), 1u);
    ASSERT_EQ(::kill(StartedPids().front(), SIGKILL), 0);
    ASSERT_TRUE(desktop_.WaitGone(*console));
    const auto box = desktop_.WaitFor(kServerErrorTitle, kInterval + 15s);
    ASSERT_TRUE(box) << Windows();
    ASSERT_TRUE(Answer(*box, "Return"));

    // Anything typed into the other window would wait in its terminal line for a line end.
    ASSERT_TRUE(desktop_.Activate(*decoyId));
    ASSERT_TRUE(desktop_.Run("xdotool", {"type", "probe"}));
    ASSERT_TRUE(desktop_.Key("Return"));
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(decoyFile).endsWith('\n'); }, 10s));
    EXPECT_EQ(ReadFile(decoyFile), "probe\n");
}

// The Exit question keeps the keyboard while it is open: the line waits and then goes on
// whole. A second launch in the middle of a line drops the rest of it: the old console
// closes, one new server starts, nothing reports it lost, and the next line reaches it whole.
TEST_F(Journey, QuestionsKeepTheKeyboardAndASecondLaunchDropsTheHalfLine) {
    const QString message = "a line long enough to be interrupted while it is typed";
    const QString line = "say " + message;
    ASSERT_NO_FATAL_FAILURE(StartMain(
        {.startup = {"TextRate=50", "ServRec=0"}, .messages = {message, "", "", ""}}, kSecondMs));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    ASSERT_TRUE(desktop_.WaitFor(kServerTitle));
    ASSERT_TRUE(WaitUntil([&] { return KeyCount() >= 10; }, kInterval + 30s));

    ASSERT_TRUE(ClickMain("CMDExit"));
    const auto question = desktop_.WaitFor("Save and exit or just exit");
    ASSERT_TRUE(question);
    const int keys = KeyCount();
    // One key may have been on its way when the question came up.
    EXPECT_FALSE(WaitUntil([&] { return KeyCount() > keys + 1; }, 1500ms)) << "typed on";
    EXPECT_EQ(desktop_.Focused(), question);
    ASSERT_TRUE(desktop_.Key("Return")); // "No", the default button
    ASSERT_TRUE(desktop_.WaitGone(*question));
    ASSERT_TRUE(WaitForTranscript(1, 30s));
    EXPECT_EQ(Transcript(), QStringList{line});

    const int lineKeys = int(line.size() + 1);
    ASSERT_TRUE(WaitUntil([&] { return KeyCount() >= lineKeys + 10; }, kInterval + 30s));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    ASSERT_TRUE(WaitUntil([&] { return StartedPids().size() == 2; }, 20s));
    bool lost = false;
    ASSERT_TRUE(WaitUntil(
        [&] {
            lost |= desktop_.Find(kServerErrorTitle).has_value();
            return Transcript().size() >= 2;
        },
        kInterval + 30s))
        << Windows();
    EXPECT_FALSE(lost);
    EXPECT_EQ(Transcript(), QStringList({line, line}));
    EXPECT_EQ(KeyTexts(), QStringList{line}) << "the new server's own keys";
    EXPECT_EQ(desktop_.Titles().count(kServerTitle), 1);
}

} // namespace
