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
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const auto first = desktop_.WaitFor(kServerTitle);
    ASSERT_TRUE(first) << Windows();
    EXPECT_TRUE(desktop_.Run("xwininfo", {"-root", "-tree"})->contains('"' + kServerTitle + '"'));
    ASSERT_TRUE(WaitForTranscript(1, 30s));
    EXPECT_EQ(Transcript(), QStringList{"say hello wayland"});

    ASSERT_TRUE(ClickMain("CMDLaunch"));
    EXPECT_TRUE(desktop_.WaitGone(*first));
    ASSERT_TRUE(WaitUntil([&] { return StartedPids().size() == 2; }, 20s));
    EXPECT_TRUE(desktop_.WaitFor(kServerTitle));
    EXPECT_EQ(desktop_.Titles().count(kServerTitle), 1);
}

} // namespace
