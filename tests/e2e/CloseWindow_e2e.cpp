// The close walk and the activation over the real X11 backend, against foreign xterm
// windows and windows of this process, on a private Xvfb with openbox.
#include "Desktop.h"
#include "XSession.h"

#include "automation/Module2.h"
#include "platform/x11/X11WindowServices.h"
#include "platform/x11/XConnectionLoss.h"

#include <gtest/gtest.h>

#include <memory>

#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

using namespace e2e;

namespace {

const QString kServer = QStringLiteral("Red Faction Dedicated Server");

// A top-level window made by this test process over a connection of its own, so it can
// tell whether a close request reached it.
class RawWindow {
public:
    struct Options {
        bool ownPid = true;         // _NET_WM_PID of this process
        Window transientFor = None; // WM_TRANSIENT_FOR
        bool modal = false;         // _NET_WM_STATE_MODAL
        bool deletable = true;      // WM_DELETE_WINDOW in WM_PROTOCOLS
    };

    RawWindow(const QString& display, const QString& title, Options options) {
        display_ = XOpenDisplay(display.toLocal8Bit().constData());
        if (!display_)
            return;
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 100, 100, 300, 200, 0,
                                      0, WhitePixel(display_, DefaultScreen(display_)));
        const QByteArray utf8 = title.toUtf8();
        XStoreName(display_, window_, utf8.constData());
        XChangeProperty(display_, window_, Atom_("_NET_WM_NAME"), Atom_("UTF8_STRING"), 8,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(utf8.data()),
                        utf8.size());
        if (options.ownPid) {
            const long pid = getpid();
            XChangeProperty(display_, window_, Atom_("_NET_WM_PID"), XA_CARDINAL, 32,
                            PropModeReplace, reinterpret_cast<const unsigned char*>(&pid), 1);
        }
        if (options.transientFor)
            XSetTransientForHint(display_, window_, options.transientFor);
        if (options.modal) {
            const long modal = long(Atom_("_NET_WM_STATE_MODAL"));
            XChangeProperty(display_, window_, Atom_("_NET_WM_STATE"), XA_ATOM, 32, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(&modal), 1);
        }
        Atom deleteWindow = Atom_("WM_DELETE_WINDOW");
        if (options.deletable)
            XSetWMProtocols(display_, window_, &deleteWindow, 1);
        SurviveConnectionLoss(display_, &RawWindow::Lost, this);
        XMapRaised(display_, window_);
        XSync(display_, False);
    }
    ~RawWindow() {
        if (!display_)
            return;
        ForgetConnection(display_);
        if (!lost_)
            XCloseDisplay(display_);
    }

    Window Id() const { return window_; }

    // Drains this window's events and counts the close requests that arrived.
    int CloseRequests() {
        if (lost_)
            return closeRequests_;
        XSync(display_, False);
        while (!lost_ && XPending(display_)) {
            XEvent event;
            XNextEvent(display_, &event);
            if (event.type == ClientMessage &&
                event.xclient.message_type == Atom_("WM_PROTOCOLS") &&
                Atom(event.xclient.data.l[0]) == Atom_("WM_DELETE_WINDOW"))
                ++closeRequests_;
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
        main_ =
            std::make_unique<RawWindow>(session_->Display(), "Hostwarden", RawWindow::Options{});
        services_.SetMainWindow(WindowHandle(main_->Id()));
        ASSERT_TRUE(WaitUntil([&] { return IsClient(main_->Id()); }, 15s));
    }

    bool IsClient(WindowId id) {
        for (WindowHandle h : services_.ClientWindows())
            if (h == id)
                return true;
        return false;
    }

    // A foreign console window, as the server run through Wine would show it.
    Process StartXterm(const QString& title, WindowId* id) {
        const std::size_t before = desktop_.Windows().size();
        Process xterm("xterm", {"-T", title, "-e", "sleep", "600"},
                      ProcessOptions{session_->Environment(), {}, {}, {}});
        WaitUntil([&] { return desktop_.Windows().size() > before; }, 10s, 50ms);
        // The newest window of that title is the top-most one after mapping.
        *id = desktop_.WaitForWindow(title).value_or(0);
        return xterm;
    }

    // The X server has handled every request sent so far, by us and by the clients.
    void Settle() { desktop_.Run("xprop", {"-root", "_NET_CLIENT_LIST_STACKING"}); }

    static std::unique_ptr<XSession> session_;
    X11WindowServices services_;
    Desktop desktop_{*session_};
    std::unique_ptr<RawWindow> main_;
};

std::unique_ptr<XSession> CloseWindowTest::session_;

TEST_F(CloseWindowTest, OfTwoServerConsolesOnlyTheUpperOneCloses) {
    WindowId lowerId = 0, upperId = 0;
    Process upper = StartXterm(kServer, &upperId);
    Process lower = StartXterm(kServer, &lowerId);
    ASSERT_NE(upperId, 0u);
    ASSERT_NE(lowerId, 0u);
    // The first one started is raised again, so "upper" is not merely "newest".
    ASSERT_TRUE(desktop_.Activate(upperId));
    ASSERT_EQ(desktop_.FindWindow(kServer), upperId);

    CloseWindowByTitle(services_, kServer);

    EXPECT_TRUE(upper.WaitForExit(10s).has_value()) << "the upper console was not closed";
    Settle();
    EXPECT_TRUE(lower.IsRunning());
    EXPECT_TRUE(desktop_.WindowExists(lowerId));
    EXPECT_EQ(main_->CloseRequests(), 0);
}

TEST_F(CloseWindowTest, ATitleHoldingTheServerTitleInCapitalsMatches) {
    WindowId id = 0;
    Process xterm = StartXterm("my RED FACTION DEDICATED SERVER log", &id);
    ASSERT_NE(id, 0u);

    CloseWindowByTitle(services_, kServer);

    EXPECT_TRUE(xterm.WaitForExit(10s).has_value());
}

TEST_F(CloseWindowTest, NoMatchingWindowLeavesEverythingOpen) {
    WindowId id = 0;
    Process xterm = StartXterm("Red Faction Dedicated", &id);
    ASSERT_NE(id, 0u);

    CloseWindowByTitle(services_, kServer);

    Settle();
    EXPECT_TRUE(xterm.IsRunning());
    EXPECT_EQ(main_->CloseRequests(), 0);
}

enum class Own { Window, MainWindowItself, TransientForMain };

class OwnWindowTest : public CloseWindowTest, public testing::WithParamInterface<Own> {};

// Our own windows are never closed, and because the walk stops at the first match, a
// server console below one of them is not closed either.
TEST_P(OwnWindowTest, IsNeverClosedAndHidesTheConsoleBelow) {
    WindowId consoleId = 0;
    Process console = StartXterm(kServer, &consoleId);
    ASSERT_NE(consoleId, 0u);
    RawWindow::Options options;
    options.ownPid = GetParam() != Own::TransientForMain;
    options.transientFor = GetParam() == Own::TransientForMain ? main_->Id() : None;
    RawWindow own(session_->Display(), "Hostwarden - Red Faction Dedicated Server", options);
    if (GetParam() == Own::MainWindowItself)
        services_.SetMainWindow(WindowHandle(own.Id()));
    ASSERT_TRUE(WaitUntil([&] { return IsClient(own.Id()); }, 15s));
    ASSERT_TRUE(desktop_.Activate(own.Id()));
    ASSERT_EQ(desktop_.FindWindow(kServer, TitleMatch::Contains), own.Id());
    if (GetParam() != Own::MainWindowItself) {
        EXPECT_EQ(services_.GetWindow(WindowHandle(own.Id()), WindowRelation::Owner),
                  services_.MainWindow());
    }

    CloseWindowByTitle(services_, kServer);

    Settle();
    EXPECT_EQ(own.CloseRequests(), 0);
    EXPECT_EQ(main_->CloseRequests(), 0);
    EXPECT_TRUE(console.IsRunning());
}

std::string OwnName(const testing::TestParamInfo<Own>& info) {
    switch (info.param) {
    case Own::Window:
        return "OfThisProcess";
    case Own::MainWindowItself:
        return "MainWindow";
    case Own::TransientForMain:
        return "TransientForMain";
    }
    return "Unknown";
}

INSTANTIATE_TEST_SUITE_P(Kinds, OwnWindowTest,
                         testing::Values(Own::Window, Own::MainWindowItself, Own::TransientForMain),
                         OwnName);

TEST_F(CloseWindowTest, AConsoleShowingAModalDialogIsLeftAloneAndNothingElseIsTried) {
    RawWindow::Options foreign;
    foreign.ownPid = false;
    RawWindow lower(session_->Display(), kServer, foreign);
    ASSERT_TRUE(WaitUntil([&] { return IsClient(lower.Id()); }, 15s));
    RawWindow console(session_->Display(), kServer, foreign);
    ASSERT_TRUE(WaitUntil([&] { return IsClient(console.Id()); }, 15s));

    CloseWindowByTitle(services_, kServer);
    ASSERT_TRUE(WaitUntil([&] { return console.CloseRequests() == 1; }, 15s))
        << "the console, enabled, is asked to close";

    RawWindow::Options dialogOptions = foreign;
    dialogOptions.transientFor = console.Id();
    dialogOptions.modal = true;
    RawWindow dialog(session_->Display(), "Really quit?", dialogOptions);
    ASSERT_TRUE(WaitUntil([&] { return IsClient(dialog.Id()); }, 15s));
    EXPECT_EQ(services_.GetStyle(WindowHandle(console.Id())), WS_DISABLED);
    EXPECT_EQ(services_.GetStyle(WindowHandle(lower.Id())), 0u);

    CloseWindowByTitle(services_, kServer);

    Settle();
    EXPECT_EQ(console.CloseRequests(), 1);
    EXPECT_EQ(lower.CloseRequests(), 0);
    EXPECT_EQ(dialog.CloseRequests(), 0);
}

TEST_F(CloseWindowTest, AWindowWithoutTheCloseProtocolIsClosedByTheWindowManager) {
    RawWindow::Options plain;
    plain.ownPid = false;
    plain.deletable = false;
    RawWindow console(session_->Display(), kServer, plain);
    ASSERT_TRUE(WaitUntil([&] { return IsClient(console.Id()); }, 15s));

    CloseWindowByTitle(services_, kServer);

    // openbox ends the connection of a client that cannot be asked politely.
    EXPECT_TRUE(WaitUntil([&] { return console.Disconnected(); }, 15s));
    EXPECT_TRUE(services_.IsConnected());
}

TEST_F(CloseWindowTest, ActivationFocusesTheConsoleOrReportsItMissing) {
    WindowId consoleId = 0, otherId = 0;
    Process console = StartXterm(kServer, &consoleId);
    Process other = StartXterm("notes", &otherId);
    ASSERT_NE(consoleId, 0u);
    ASSERT_NE(otherId, 0u);
    ASSERT_TRUE(desktop_.Activate(otherId));

    EXPECT_EQ(services_.ActivateByTitle("red faction DEDICATED server"), ActivateResult::Activated);
    EXPECT_EQ(desktop_.ActiveWindow(), consoleId);
    // Already in front: reported at once.
    EXPECT_EQ(services_.ActivateByTitle(kServer), ActivateResult::Activated);

    EXPECT_EQ(services_.ActivateByTitle("No Such Server"), ActivateResult::NotFound);
    console.Stop();
    ASSERT_TRUE(desktop_.WaitForWindowGone(consoleId));
    EXPECT_EQ(services_.ActivateByTitle(kServer), ActivateResult::NotFound);
}

// Without a window manager the top-level windows are the root's mapped children, and
// activation raises the window and gives it the focus itself.
TEST(WithoutWindowManager, TheConsoleIsActivatedAndClosed) {
    XSession session(XSession::WindowManager::Absent);
    Desktop desktop(session);
    X11WindowServices services(session.Display().toLocal8Bit().constData());
    RawWindow main(session.Display(), "Hostwarden", {});
    services.SetMainWindow(WindowHandle(main.Id()));
    const ProcessOptions options{session.Environment(), {}, {}, {}};
    Process console("xterm", {"-T", kServer, "-e", "sleep", "600"}, options);
    Process notes("xterm", {"-T", "notes", "-e", "sleep", "600"}, options);
    auto titles = [&] {
        QStringList t;
        for (WindowHandle h : services.ClientWindows())
            t << services.GetWindowText(h);
        return t;
    };
    ASSERT_TRUE(
        WaitUntil([&] { return titles().contains(kServer) && titles().contains("notes"); }, 15s))
        << titles().join(", ").toStdString();

    EXPECT_EQ(services.ActivateByTitle(kServer), ActivateResult::Activated);
    EXPECT_EQ(titles().value(0), kServer) << "raised to the top";

    CloseWindowByTitle(services, kServer);

    EXPECT_TRUE(console.WaitForExit(10s).has_value());
    EXPECT_TRUE(notes.IsRunning());
    EXPECT_EQ(services.ActivateByTitle(kServer), ActivateResult::NotFound);
    EXPECT_EQ(main.CloseRequests(), 0);
}

TEST(LostConnection, TheProgramKeepsRunningAndFindsNoWindows) {
    auto session = std::make_unique<XSession>(XSession::WindowManager::Absent);
    X11WindowServices services(session->Display().toLocal8Bit().constData());
    ASSERT_TRUE(services.IsConnected());

    session->StopServer();

    EXPECT_EQ(services.ActivateByTitle(kServer), ActivateResult::NotFound);
    EXPECT_FALSE(services.IsConnected());
    EXPECT_EQ(services.GetWindow(0, WindowRelation::First), 0u);
    CloseWindowByTitle(services, kServer);
    services.PostMessage(1234, WM_CLOSE);
}

} // namespace
