// A server that cannot start: its failure told, no endless relaunch. (A server that dies is
// watched in the recovery journeys.)
#include "Journey.h"

#include <fstream>

using namespace e2e;

namespace {

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
    EXPECT_TRUE(ReadFile(pasted).startsWith(title.toUtf8() + "\n") &&
                ReadFile(pasted).contains("Exit status: 3"));
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
