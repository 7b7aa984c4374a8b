// The close walk and the activation over the real X11 backend, against foreign xterm
// windows and windows of this process, on a private Xvfb with openbox.
#include "Desktop.h"
#include "Texts.h"
#include "XSession.h"

#include "automation/Module2.h"
#include "platform/KeySendError.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11WindowServices.h"
#include "platform/x11/XConnectionLoss.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

using namespace e2e;

namespace {

struct WindowOptions {
    bool ownPid = true;         // _NET_WM_PID of this process
    Window transientFor = None; // WM_TRANSIENT_FOR
    bool modal = false;         // _NET_WM_STATE_MODAL
    bool deletable = true;      // WM_DELETE_WINDOW in WM_PROTOCOLS
};

// A top-level window made by this test process over a connection of its own, so it can
// tell whether a close request reached it.
class RawWindow {
public:
    RawWindow(const QString& display, const QString& title, WindowOptions options = {}) {
        display_ = XOpenDisplay(display.toLocal8Bit().constData());
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 100, 100, 300, 200, 0,
                                      0, WhitePixel(display_, DefaultScreen(display_)));
        XStoreName(display_, window_, title.toLatin1().constData());
        if (options.ownPid)
            Set("_NET_WM_PID", XA_CARDINAL, getpid());
        if (options.modal)
            Set("_NET_WM_STATE", XA_ATOM, long(Atom_("_NET_WM_STATE_MODAL")));
        if (options.transientFor)
            XSetTransientForHint(display_, window_, options.transientFor);
        Atom deleteWindow = Atom_("WM_DELETE_WINDOW");
        if (options.deletable)
            XSetWMProtocols(display_, window_, &deleteWindow, 1);
        SurviveConnectionLoss(display_, &RawWindow::Lost, this);
        XMapRaised(display_, window_);
        XSync(display_, False);
    }
    ~RawWindow() {
        Disconnected();
        ForgetConnection(display_);
        if (!lost_)
            XCloseDisplay(display_);
    }

    Window Id() const { return window_; }

    // Drains this window's events and counts the close requests that arrived.
    int CloseRequests() {
        Disconnected();
        while (!lost_ && XPending(display_)) {
            XEvent event;
            XNextEvent(display_, &event);
            closeRequests_ += event.type == ClientMessage &&
                              event.xclient.message_type == Atom_("WM_PROTOCOLS") &&
                              Atom(event.xclient.data.l[0]) == Atom_("WM_DELETE_WINDOW");
        }
        return closeRequests_;
    }

    // True once the server has ended this window's connection.
    bool Disconnected() {
        if (!lost_)
            XSync(display_, False);
        return lost_;
    }

private:
    Atom Atom_(const char* name) { return XInternAtom(display_, name, False); }
    void Set(const char* property, Atom type, long value) {
        XChangeProperty(display_, window_, Atom_(property), type, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&value), 1);
    }
    static void Lost(::Display*, void* self) { static_cast<RawWindow*>(self)->lost_ = true; }

    ::Display* display_ = nullptr;
    Window window_ = None;
    int closeRequests_ = 0;
    bool lost_ = false;
};

class CloseWindowTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        session_ = std::make_unique<XSession>();
        session_->UseInThisProcess();
    }
    static void TearDownTestSuite() { session_.reset(); }

    void SetUp() override {
        ASSERT_TRUE(services_.IsConnected());
        services_.SetMainWindow(WindowHandle(main_.Id()));
        ASSERT_TRUE(Managed(main_.Id()));
    }

    bool Managed(WindowId id) {
        return WaitUntil([&] { return std::ranges::count(services_.ClientWindows(), id) == 1; },
                         15s);
    }

    // A foreign console window, as the server run through Wine would show it.
    std::pair<Process, WindowId> Xterm(const QString& title) {
        Process xterm("xterm", {"-T", title, "-e", "sleep", "600"}, {session_->Environment()});
        const WindowId id = desktop_.WaitForWindow(title).value_or(0);
        EXPECT_NE(id, 0u) << title.toStdString();
        return {std::move(xterm), id};
    }

    // The X server has handled every request sent so far, by us and by the clients.
    void Settle() { desktop_.Run("xprop", {"-root", "_NET_CLIENT_LIST_STACKING"}); }

    inline static std::unique_ptr<XSession> session_;
    X11WindowServices services_;
    Desktop desktop_{session_->Display()};
    RawWindow main_{session_->Display(), "Hostwarden"};
};

// Titles match in any letter case, anywhere in a longer title; a part of the title is no
// match. Activation and closing both take the upper console, and only that one; a window
// that cannot be asked to close is closed by the window manager.
TEST_F(CloseWindowTest, ServerConsolesAreActivatedAndClosedFromTheTopDown) {
    auto [upper, upperId] = Xterm(kServerTitle);
    auto [lower, lowerId] = Xterm("my RED FACTION DEDICATED SERVER log");
    auto [part, partId] = Xterm("Red Faction Dedicated");
    // The first one started is raised again, so "upper" is not merely "newest".
    ASSERT_TRUE(desktop_.Activate(upperId));
    ASSERT_TRUE(desktop_.Activate(partId));

    EXPECT_EQ(services_.ActivateByTitle("red faction DEDICATED server"), ActivateResult::Activated);
    EXPECT_EQ(desktop_.ActiveWindow(), upperId);
    // Already in front: reported at once.
    EXPECT_EQ(services_.ActivateByTitle(kServerTitle), ActivateResult::Activated);
    EXPECT_EQ(services_.ActivateByTitle("No Such Server"), ActivateResult::NotFound);

    CloseWindowByTitle(services_, kServerTitle);
    EXPECT_TRUE(upper.WaitForExit(10s).has_value()) << "the upper console was not closed";
    Settle();
    EXPECT_TRUE(lower.IsRunning());
    ASSERT_TRUE(desktop_.WaitForWindowGone(upperId));

    CloseWindowByTitle(services_, kServerTitle);
    EXPECT_TRUE(lower.WaitForExit(10s).has_value());
    ASSERT_TRUE(desktop_.WaitForWindowGone(lowerId));
    EXPECT_TRUE(part.IsRunning());
    EXPECT_EQ(services_.ActivateByTitle(kServerTitle), ActivateResult::NotFound);

    // openbox ends the connection of a client that cannot be asked politely.
    RawWindow plain(session_->Display(), kServerTitle, {.ownPid = false, .deletable = false});
    ASSERT_TRUE(Managed(plain.Id()));
    CloseWindowByTitle(services_, kServerTitle);
    EXPECT_TRUE(WaitUntil([&] { return plain.Disconnected(); }, 15s));
    EXPECT_TRUE(services_.IsConnected());
}

// Our own windows are never closed, and because the walk stops at the first match, a
// server console below one of them is not closed either.
TEST_F(CloseWindowTest, OwnWindowsAreNeverClosedAndHideTheConsoleBelow) {
    auto [console, consoleId] = Xterm(kServerTitle);
    enum Own { OfThisProcess, MainWindowItself, TransientForMain };
    for (const Own kind : {OfThisProcess, MainWindowItself, TransientForMain}) {
        SCOPED_TRACE(kind);
        RawWindow own(session_->Display(), "Hostwarden - Red Faction Dedicated Server",
                      {.ownPid = kind != TransientForMain,
                       .transientFor = kind == TransientForMain ? main_.Id() : None});
        services_.SetMainWindow(WindowHandle(kind == MainWindowItself ? own.Id() : main_.Id()));
        ASSERT_TRUE(Managed(own.Id()));
        ASSERT_TRUE(desktop_.Activate(own.Id()));
        ASSERT_EQ(desktop_.FindWindow(kServerTitle, TitleMatch::Contains), own.Id());

        CloseWindowByTitle(services_, kServerTitle);

        Settle();
        EXPECT_EQ(own.CloseRequests(), 0);
        EXPECT_EQ(main_.CloseRequests(), 0);
        EXPECT_TRUE(console.IsRunning());
    }
}

TEST_F(CloseWindowTest, AConsoleShowingAModalDialogIsLeftAloneAndNothingElseIsTried) {
    RawWindow lower(session_->Display(), kServerTitle, {.ownPid = false});
    ASSERT_TRUE(Managed(lower.Id()));
    RawWindow console(session_->Display(), kServerTitle, {.ownPid = false});
    ASSERT_TRUE(Managed(console.Id()));

    CloseWindowByTitle(services_, kServerTitle);
    ASSERT_TRUE(WaitUntil([&] { return console.CloseRequests() == 1; }, 15s))
        << "the console, enabled, is asked to close";

    RawWindow dialog(session_->Display(), "Really quit?",
                     {.ownPid = false, .transientFor = console.Id(), .modal = true});
    ASSERT_TRUE(Managed(dialog.Id()));
    EXPECT_EQ(services_.GetStyle(WindowHandle(console.Id())), WS_DISABLED);
    EXPECT_EQ(services_.GetStyle(WindowHandle(lower.Id())), 0u);

    CloseWindowByTitle(services_, kServerTitle);

    Settle();
    EXPECT_EQ(console.CloseRequests(), 1);
    EXPECT_EQ(lower.CloseRequests(), 0);
    EXPECT_EQ(dialog.CloseRequests(), 0);
}

// Without a window manager the top-level windows are the root's mapped children, and
// activation raises the window and gives it the focus itself. When the X server goes
// away, the program keeps running: the window services find no windows and the keyboard,
// which holds a connection of its own, reports a failed key.
TEST(WithoutWindowManager, TheConsoleIsActivatedAndClosedAndALostServerIsSurvived) {
    XSession session(XSession::WindowManager::Absent);
    // A connection of someone else's (the toolkit's) keeps the handler it had: here one that
    // records the loss instead of ending the test.
    static bool otherLost = false;
    XSetIOErrorHandler([](::Display*) { return 0; });
    ::Display* other = XOpenDisplay(session.Display().toLocal8Bit().constData());
    ASSERT_NE(other, nullptr);
    XSetIOErrorExitHandler(
        other, [](::Display*, void*) { otherLost = true; }, nullptr);
    X11WindowServices services(session.Display().toLocal8Bit().constData());
    setenv("DISPLAY", session.Display().toLocal8Bit().constData(), 1);
    X11Keyboard keyboard;
    keyboard.KeyEvent(0x10, 0, 0); // Shift down and up: the keyboard's connection is open
    keyboard.KeyEvent(0x10, 0, KEYEVENTF_KEYUP);
    RawWindow main(session.Display(), "Hostwarden");
    auto console = std::make_unique<RawWindow>(session.Display(), kServerTitle,
                                               WindowOptions{.ownPid = false});
    RawWindow notes(session.Display(), "notes", {.ownPid = false});
    services.SetMainWindow(WindowHandle(main.Id()));

    EXPECT_EQ(services.ActivateByTitle(kServerTitle), ActivateResult::Activated);
    EXPECT_EQ(services.ClientWindows().front(), console->Id()) << "raised to the top";

    CloseWindowByTitle(services, kServerTitle);

    EXPECT_TRUE(WaitUntil([&] { return console->CloseRequests() == 1; }, 10s));
    EXPECT_EQ(notes.CloseRequests(), 0);
    EXPECT_EQ(main.CloseRequests(), 0);
    console.reset();
    EXPECT_TRUE(WaitUntil(
        [&] { return services.ActivateByTitle(kServerTitle) == ActivateResult::NotFound; }, 10s));

    session.StopServer();
    EXPECT_THROW(keyboard.KeyEvent(0x10, 0, 0), KeySendError);
    XSync(other, False); // the loss travels the handler chain once, without recursing
    EXPECT_TRUE(otherLost);
    EXPECT_EQ(services.ActivateByTitle("notes"), ActivateResult::NotFound);
    EXPECT_FALSE(services.IsConnected());
    EXPECT_EQ(services.GetWindow(0, WindowRelation::First), 0u);
    CloseWindowByTitle(services, "notes");
    services.PostMessage(notes.Id(), WM_CLOSE);
}

} // namespace
