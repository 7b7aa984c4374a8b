// The launched server watched by the real program: a server that dies is noticed at once,
// with or without automatic messages; one that cannot start is told with its own words, and
// recovery gives up on it after three relaunches.
#include "Journey.h"

#include <signal.h>

using namespace e2e;

namespace {

class Watch : public Journey, public testing::WithParamInterface<bool> {};

// Killed with the messages off: "Server Error" at once. With "Server Recover" on (which
// needs the messages on): the same command line starts a new server at once.
TEST_P(Watch, AKilledServerIsSeenWithinTwoSeconds) {
    const bool recover = GetParam();
    ASSERT_NO_FATAL_FAILURE(StartMain({.startup = {"ServRec=" + QString::number(recover)}}));
    ASSERT_TRUE(recover || ClickMain("CHKMessage"));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    ASSERT_TRUE(desktop_.WaitFor(kServerTitle) && StartedPids().size() == 1u) << Windows();
    const QByteArray commandLine = ReadFile(GameFile("commandline.txt"));
    ASSERT_TRUE(QFile::remove(GameFile("commandline.txt")));
    ASSERT_EQ(::kill(StartedPids().front(), SIGKILL), 0);
    EXPECT_EQ(desktop_.WaitFor(kServerErrorTitle, 2s).has_value(), !recover) << Windows();
    EXPECT_EQ(WaitUntil([&] { return StartedPids().size() == 2u; }, recover ? 2s : 0s), recover);
    EXPECT_EQ(WaitUntil([&] { return ReadFile(GameFile("commandline.txt")) == commandLine; },
                        recover ? 5s : 0s),
              recover);
}

// An RF.EXE that fails at once: its status and error output are told within 6 s of the
// launch. With recovery on it runs four times in all, then recovery gives up and says so.
TEST_P(Watch, AServerThatCannotStartIsToldOnceAndNotStartedForever) {
    const bool recover = GetParam();
    QFile script(GameFile("RF.EXE"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                script.write("#!/bin/sh\necho run >> runs.txt\necho 'cannot start' >&2\nexit 3\n"));
    script.close();
    ASSERT_NO_FATAL_FAILURE(StartMain({.startup = {"ServRec=" + QString::number(recover)}}));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const QString title = recover ? "Server Recover" : "Dedicated Server Error";
    const auto box = desktop_.WaitFor(title, 6s);
    ASSERT_TRUE(box) << Windows();
    // The box's text, as Ctrl+C copies it and an xterm pastes it.
    const QString pasted = gameParent_.filePath("pasted");
    Process xterm("xterm",
                  {"-xrm", "XTerm*selectToClipboard: true", "-T", "paste", "-e", "sh", "-c",
                   "cat > '" + pasted + "'"},
                  desktop_.Environment());
    const auto terminal = desktop_.WaitFor("paste");
    ASSERT_TRUE(terminal && Answer(*box, "ctrl+c") && Answer(*terminal, "shift+Insert") &&
                desktop_.Key("Return"));
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(pasted).contains("cannot start"); }, 10s));
    EXPECT_TRUE(ReadFile(pasted).startsWith(title.toUtf8() + "\n")) << ReadFile(pasted).data();
    EXPECT_TRUE(ReadFile(pasted).contains("Exit status: 3"));
    std::this_thread::sleep_for(2s);
    EXPECT_EQ(GameLines("runs.txt").size(), recover ? 4 : 1);
    EXPECT_EQ(desktop_.Titles().count(title), 1);
}

INSTANTIATE_TEST_SUITE_P(ServerRecover, Watch, testing::Bool(),
                         [](const auto& info) { return info.param ? "On" : "Off"; });

} // namespace
