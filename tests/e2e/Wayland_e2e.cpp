// Hostwarden on a Wayland desktop, run inside one by scripts/wayland-session.sh with the
// session's own environment (no QT_QPA_PLATFORM; Qt's Wayland plugin installed).
#include "Journey.h"

using namespace e2e;

namespace {

class Wayland : public Journey {
protected:
    Wayland() : Journey(Desktop::Session{}) {}
};

// With Xwayland: our window and the stand-in's are X11 windows (found in the X11 client
// list), the chat line arrives whole, and a second launch leaves one server.
TEST_F(Wayland, TheConsoleIsAnX11WindowThatGetsItsLines) {
    ASSERT_NO_FATAL_FAILURE(StartMain({.messages = {"hello wayland", "", "", ""}}, 20));
    ASSERT_TRUE(ClickMain("CMDLaunch") && WaitForTranscript(1, 30s)) << Windows();
    EXPECT_TRUE(desktop_.Run("xwininfo", {"-root", "-tree"})->contains('"' + kServerTitle + '"'));
    EXPECT_EQ(Transcript(), QStringList{"say hello wayland"});

    // Window ids come back into use at once under Xwayland: the server's own word it closed.
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    ASSERT_TRUE(WaitUntil([&] { return StartedPids().size() == 2; }, 20s));
    const QString closed = QStringLiteral("closed pid %1").arg(StartedPids()[0]);
    EXPECT_TRUE(WaitUntil([&] { return GameLines("events.txt").contains(closed); }, 10s));
    EXPECT_TRUE(desktop_.WaitFor(kServerTitle));
    EXPECT_EQ(desktop_.Titles().count(kServerTitle), 1);
}

// Without any X display our window is a Wayland window, seen and pressed here as a screen
// reader does. Launch writes the options and starts the server, which cannot open its
// console and ends: one plain notice says why, not again after a second launch, and never
// "Server Error".
TEST_F(Wayland, WithoutXTypingIsExplainedOnce) {
    Seed({.messages = {"hello", "", "", ""}});
    hostwarden_ = StartHostwarden(20);
    const auto press = [&](const QString& window, const QString& button) {
        return WaitUntil([&] { return desktop_.Run(ACCESSIBLE, {"press", window, button}); }, 30s);
    };
    const auto notices = [&] {
        const QString windows = desktop_.Run(ACCESSIBLE, {"windows"}).value_or("");
        EXPECT_FALSE(windows.contains(kServerErrorTitle));
        return windows.count(kNoDisplayTitle);
    };
    ASSERT_TRUE(press(kMainTitle, "Launch") && WaitUntil([&] { return notices() == 1; }, 30s));
    EXPECT_TRUE(QFile::exists(GameFile("dedicated_server.txt")));
    EXPECT_EQ(GameLines("commandline.txt").value(1), "-dedicated");
    ASSERT_TRUE(press(kNoDisplayTitle, "OK") && WaitUntil([&] { return notices() == 0; }, 10s));
    ASSERT_TRUE(press(kMainTitle, "Launch"));
    EXPECT_FALSE(WaitUntil([&] { return notices() > 0; }, 10s));
    EXPECT_TRUE(hostwarden_.IsRunning());
}

} // namespace
