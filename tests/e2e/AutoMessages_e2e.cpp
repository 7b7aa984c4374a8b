// The automatic messages and the server watch as the stand-in server sees them.
#include "Journey.h"

#include <QFile>

#include <algorithm>
#include <fstream>
#include <numeric>

#include <signal.h>

using namespace e2e;
using Clock = std::chrono::steady_clock;

namespace {

const std::array<QString, 4> kTwoMessages = {"hello one", "", "third box", ""};
// A window that only mentions the server in its title.
const QString kDecoyTitle = "notes about red faction dedicated server.txt - editor";
const QStringList kBatch = {"say hello one", "say third box"};

// The program's "second" in the short runs: a three-minute interval passes in 3.6 s.
constexpr int kSecondMs = 20;
constexpr auto kInterval = std::chrono::milliseconds(180 * kSecondMs);

// SLOW: about three real minutes. The one run at real seconds and the default interval, so
// the short test timing hides no wrong unit or default.
TEST_F(Journey, SlowTheFirstLineComesThreeRealMinutesAfterLaunch) {
    ASSERT_NO_FATAL_FAILURE(StartMain({.messages = kTwoMessages}));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const auto launched = Clock::now();
    // 180 s, a second for the dispatcher, "say hello one" and Enter at 110 ms a key.
    const auto typing = std::chrono::milliseconds(14 * 110);
    ASSERT_TRUE(WaitForTranscript(1, 200s + typing));
    const auto firstLine = Clock::now() - launched;
    EXPECT_EQ(Transcript().value(0), "say hello one");
    EXPECT_GE(firstLine, 179s);
    EXPECT_LE(firstLine, 185s + typing);
}

// "Server Recover" on, or off with "Auto Message" turned off first, so that only the watch can
// notice.
class Recovery : public Journey, public testing::WithParamInterface<bool> {};

// The first batch comes in box order, at the text rate. Then the server dies. With "Server
// Recover" the program starts it again within 2 s; without, it tells the operator within 2 s,
// once, and the operator's own launch starts it. The messages then go on to the new server.
TEST_P(Recovery, AServerThatDiedIsStartedAgainAndTheMessagesGoOn) {
    const bool recover = GetParam();
    ASSERT_NO_FATAL_FAILURE(
        StartMain({.startup = {"TextRate=50", "ServRec=" + QString::number(recover)},
                   .messages = kTwoMessages},
                  kSecondMs));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const auto server = desktop_.WaitFor(kServerTitle);
    ASSERT_TRUE(server && WaitForTranscript(2, 30s));
    ASSERT_EQ(Transcript(), kBatch);
    // Key to key: the text rate, within what the timer and the server's event loop allow.
    std::vector<qint64> gaps;
    for (const QString& key : GameLines("keys.log"))
        gaps.push_back(key.section(' ', 0, 0).toLongLong());
    std::adjacent_difference(gaps.begin(), gaps.end(), gaps.begin());
    std::sort(gaps.begin() + 1, gaps.end());
    EXPECT_NEAR(gaps[gaps.size() / 2], 50, 15) << testing::PrintToString(gaps);
    const QByteArray commandLine = ReadFile(GameFile("commandline.txt"));
    ASSERT_TRUE(QFile::remove(GameFile("commandline.txt")));
    ASSERT_EQ(StartedPids().size(), 1u);
    ASSERT_TRUE(recover || ClickMain("CHKMessage"));
    Process decoy("xterm", {"-T", kDecoyTitle}, desktop_.Environment());
    ASSERT_TRUE(desktop_.WaitFor(kDecoyTitle));
    ASSERT_EQ(::kill(StartedPids().front(), SIGKILL), 0); // as a crash would

    if (!recover) {
        const auto box = desktop_.WaitFor(kServerErrorTitle, 2s);
        ASSERT_TRUE(box && desktop_.WaitGone(*server)) << Windows();
        EXPECT_EQ(desktop_.Titles().count(kServerErrorTitle), 1);
        EXPECT_EQ(StartedPids().size(), 1u);
        ASSERT_TRUE(Answer(*box, "Return") && desktop_.WaitGone(*box) && ClickMain("CMDLaunch"));
    }
    ASSERT_TRUE(WaitUntil([&] { return StartedPids().size() == 2; }, recover ? 2s : 15s))
        << ReadFile(GameFile("events.txt")).toStdString();
    EXPECT_TRUE(desktop_.WaitFor(kServerTitle));
    EXPECT_TRUE(
        WaitUntil([&] { return ReadFile(GameFile("commandline.txt")) == commandLine; }, 10s))
        << "the new server's command line: " << ReadFile(GameFile("commandline.txt")).toStdString();
    ASSERT_TRUE(recover || (desktop_.Activate(main_) && ClickMain("CHKMessage")));

    bool boxShown = false;
    const auto secondBatch = [&] {
        boxShown |= desktop_.Find(kServerErrorTitle).has_value();
        return Transcript().size() >= 4;
    };
    ASSERT_TRUE(WaitUntil(secondBatch, kInterval + 20s)) << Transcript().join(" | ");
    EXPECT_FALSE(boxShown);
    EXPECT_EQ(Transcript(), kBatch + kBatch);
    EXPECT_EQ(KeyTexts(), kBatch); // the new server's own key log
    EXPECT_TRUE(hostwarden_.IsRunning());
}

INSTANTIATE_TEST_SUITE_P(Deaths, Recovery, testing::Bool(), [](const auto& info) {
    return info.param ? "Recovered" : "ToldWithMessagesOff";
});

// An operator working in another window, one whose title mentions the server, while a chat
// line is being typed into a console on another desktop: the program brings the console to
// the operator's desktop and in front before every key, so the line reaches the server
// whole, letters outside ASCII included, and the other window gets nothing.
TEST_F(Journey, ClicksIntoAnotherWindowWhileTypingLoseNoKey) {
    // Characters outside the key language's special ones; capitals are typed with Shift, so a
    // focus change between Shift and the letter would show too.
    const QString message = QString::fromUtf8(
        "Welcome to the Hostwarden test server, please keep the chat friendly and read the "
        "Rules at the Spawn point, then go Play: caf\u00e9 \u00df \u20ac \U0001F600 ok");
    const QString line = "say " + QString(message).replace(QString::fromUtf8("\U0001F600"), "?");
    // A 15-minute interval of 10 ms seconds: 9 s from launch to the long line.
    ASSERT_NO_FATAL_FAILURE(StartMain(
        {.startup = {"TextRate=110", "MsgRate=15"}, .messages = {message, "", "", ""}}, 10));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const QString console = QString::number(desktop_.WaitFor(kServerTitle).value_or(0));
    ASSERT_TRUE(desktop_.Run("xdotool", {"set_num_desktops", "2"}) &&
                desktop_.Run("xdotool", {"set_desktop_for_window", console, "1"}));
    ASSERT_TRUE(WaitUntil([&] { return KeyCount() > 0; }, 30s)) << "typing never began";
    // The operator turns "Auto Message" off, which also keeps the next batch (due in 9 s)
    // out of the probe below; the line being typed goes on.
    ASSERT_TRUE(ClickMain("CHKMessage"));

    const QString other = gameParent_.filePath("OTHER");
    auto [xterm, otherId] = desktop_.Xterm(kDecoyTitle, "cat > '" + other + "'");
    ASSERT_TRUE(otherId);

    // Every 15 keys or so (or 2 s, should the keys stop coming), click into the other window
    // and activate it, as an operator would, and note whether it really held the focus.
    const int lineKeys = int(line.size() + 1);
    int stolen = 0;
    for (int round = 0; round < 6; ++round) {
        const int target = std::min(lineKeys - 5, KeyCount() + 15);
        WaitUntil([&] { return KeyCount() >= target; }, 2s);
        desktop_.Click(otherId, {40, 40});
        desktop_.Run("xdotool", {"windowactivate", QString::number(otherId)});
        stolen += desktop_.Active() == otherId || desktop_.Focused() == otherId;
    }
    EXPECT_GT(stolen, 0) << "the other window never held the focus: nothing was tested";

    // On failure, go on to the other window: what it caught tells where the keys went.
    EXPECT_TRUE(WaitForTranscript(1, 30s)) << "the line never ended";
    EXPECT_EQ(Transcript(), QStringList{line});
    EXPECT_EQ(KeyTexts(), QStringList{line}) << "keys the server saw";
    EXPECT_EQ(desktop_.Run("xdotool", {"get_desktop_for_window", console}), "0\n");

    // Anything typed into the other window would sit in its terminal line until a line
    // end; our own probe and its Return flush it out together.
    ASSERT_TRUE(desktop_.Activate(otherId) && desktop_.Type("probe") && desktop_.Key("Return"));
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(other).endsWith('\n'); }, 10s));
    EXPECT_EQ(ReadFile(other), "probe\n");
}

// The Exit question keeps the keyboard: the line waits and then goes on whole. A second
// launch in the middle of a line drops its rest: one new server, nothing reported lost, and
// the next line reaches it whole.
TEST_F(Journey, QuestionsKeepTheKeyboardAndASecondLaunchDropsTheHalfLine) {
    const QString line = "say a line long enough to be interrupted while it is typed";
    ASSERT_NO_FATAL_FAILURE(
        StartMain({.startup = {"TextRate=50"}, .messages = {line.mid(4), "", "", ""}}, kSecondMs));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    ASSERT_TRUE(WaitUntil([&] { return KeyCount() >= 10; }, kInterval + 30s));
    ASSERT_TRUE(ClickMain("CMDExit"));
    const auto question = desktop_.WaitFor(kExitTitle);
    const int keys = KeyCount(); // one more may have been on its way
    ASSERT_TRUE(question);
    EXPECT_FALSE(WaitUntil([&] { return KeyCount() > keys + 1; }, 1500ms)) << "typed on";
    EXPECT_EQ(desktop_.Focused(), question);
    ASSERT_TRUE(desktop_.Key("Return")); // "No", the default button: program and server go on
    ASSERT_TRUE(WaitUntil([&] { return KeyCount() >= line.size() + 10; }, kInterval + 30s));
    EXPECT_FALSE(ReadFile(GameFile("events.txt")).contains("closed pid"));
    ASSERT_TRUE(ClickMain("CMDLaunch") && WaitForTranscript(2, kInterval + 30s)) << Windows();
    EXPECT_FALSE(desktop_.Find(kServerErrorTitle)) << "a Server Error box waits for its answer";
    EXPECT_EQ(Transcript(), QStringList({line, line}));
    EXPECT_EQ(KeyTexts(), QStringList{line}) << "the new server's own keys";
    EXPECT_EQ(desktop_.Titles().count(kServerTitle), 1);
}

class Watch : public Journey, public testing::WithParamInterface<bool> {};

// An RF.EXE that fails at once is told within 6 s, and run 4 times at most; the operator's own
// dedicated_server.txt is kept once, before Hostwarden's first write.
TEST_P(Watch, AServerThatCannotStartIsToldOnceAndNotStartedForever) {
    const bool recover = GetParam();
    std::ofstream(GameFile("RF.EXE").toStdString())
        << "#!/bin/sh\necho run >> runs.txt\nexec " STANDIN_BIN " --exit 3\n";
    std::ofstream(GameFile("dedicated_server.txt").toStdString()) << "mine";
    ASSERT_NO_FATAL_FAILURE(StartMain({.startup = {"ServRec=" + QString::number(recover)}}));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const QString title = recover ? "Server Recover" : "Dedicated Server Error";
    const auto box = desktop_.WaitFor(title, 6s);
    // The box's text, as Ctrl+C copies it.
    ASSERT_TRUE(box && Answer(*box, "ctrl+c")) << Windows();
    QString text;
    WaitUntil([&] { return (text = Clipboard()).contains("cannot start"); }, 10s);
    EXPECT_TRUE(text.startsWith(title + "\n") && text.contains("Exit status: 3")) << text;
    std::this_thread::sleep_for(2s);
    EXPECT_EQ(GameLines("runs.txt").size(), recover ? 4 : 1);
    EXPECT_EQ(desktop_.Titles().count(title), 1);
    EXPECT_EQ(ReadFile(GameFile("dedicated_server.txt.bak")), "mine");
    // Once the file is Hostwarden's own, no launch keeps it.
    ASSERT_TRUE(QFile::remove(GameFile("dedicated_server.txt.bak")) && Answer(*box, "Return"));
    ASSERT_TRUE(desktop_.WaitGone(*box) && ClickMain("CMDLaunch") && desktop_.WaitFor(title, 20s));
    EXPECT_FALSE(QFile::exists(GameFile("dedicated_server.txt.bak")));
}

INSTANTIATE_TEST_SUITE_P(ServerRecover, Watch, testing::Bool(),
                         [](const auto& info) { return info.param ? "On" : "Off"; });

} // namespace
