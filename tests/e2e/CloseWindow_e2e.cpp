// The X11 backends in this process: typing through XTest, activating the server console and
// the walk that closes it, among xterms and windows of this process.
#include "Journey.h"

#include "automation/ModPushKeys.h"
#include "automation/Module2.h"
#include "platform/KeySendError.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11WindowServices.h"

#include <memory>

#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

using namespace e2e;

namespace {

struct WindowOptions {
    bool ownPid = true;         // _NET_WM_PID of this process
    Window transientFor = None; // WM_TRANSIENT_FOR
    bool modal = false;         // _NET_WM_STATE_MODAL
};

// A top-level window on a connection of its own, titled through _NET_WM_NAME (the xterms use
// WM_NAME), counting the close requests it receives. It must go before its X server does.
class RawWindow {
public:
    RawWindow(const Desktop& desktop, const QString& title, WindowOptions options = {})
        : x_(XOpenDisplay(desktop.Display().toLocal8Bit().constData())),
          id_(XCreateSimpleWindow(x_, DefaultRootWindow(x_), 100, 100, 300, 200, 0, 0, 0)) {
        const QByteArray name = title.toUtf8();
        Set("_NET_WM_NAME", Atom_("UTF8_STRING"), 8, name.data(), int(name.size()));
        const long pid = getpid(), modal = long(Atom_("_NET_WM_STATE_MODAL"));
        if (options.ownPid)
            Set("_NET_WM_PID", XA_CARDINAL, 32, &pid, 1);
        if (options.modal)
            Set("_NET_WM_STATE", XA_ATOM, 32, &modal, 1);
        if (options.transientFor)
            XSetTransientForHint(x_, id_, options.transientFor);
        Atom deleteWindow = Atom_("WM_DELETE_WINDOW");
        XSetWMProtocols(x_, id_, &deleteWindow, 1);
        XMapRaised(x_, id_);
        XSync(x_, False);
    }
    ~RawWindow() { XCloseDisplay(x_); }

    Window Id() const { return id_; }
    int CloseRequests() {
        XSync(x_, False);
        for (XEvent event; XPending(x_);) {
            XNextEvent(x_, &event);
            closeRequests_ += event.type == ClientMessage &&
                              Atom(event.xclient.data.l[0]) == Atom_("WM_DELETE_WINDOW");
        }
        return closeRequests_;
    }

private:
    Atom Atom_(const char* name) { return XInternAtom(x_, name, False); }
    void Set(const char* property, Atom type, int format, const void* data, int count) {
        XChangeProperty(x_, id_, Atom_(property), type, format, PropModeReplace,
                        static_cast<const unsigned char*>(data), count);
    }

    ::Display* x_;
    Window id_;
    int closeRequests_ = 0;
};

// Mapped raised, a window ends up on top once the window manager has placed it.
bool OnTop(const Desktop& desktop, WindowId id) {
    return WaitUntil([&] { return desktop.Windows().value(0) == id; }, 15s);
}

// Asks for the window to be activated, as the typist does; true when it holds the focus.
bool Activated(X11WindowServices& services, WindowHandle window) {
    services.ActivateWindow(window);
    return window != 0 && services.HasFocus(window);
}

// How the X11 backend tells the walk our own windows, the stacking order, a modal dialog and a
// window without WM_DELETE_WINDOW. The console is typed into a character at a time, activated
// before each, as the messages do.
TEST_F(Journey, TheServerConsoleIsTypedIntoActivatedAndClosedFromTheTopDown) {
    desktop_.UseInThisProcess();
    X11WindowServices services; // both on $DISPLAY
    X11Keyboard keyboard;
    RawWindow main(desktop_, "Hostwarden");
    ASSERT_TRUE(OnTop(desktop_, main.Id()));
    // Foreign consoles, as the server run through Wine would show them. This one's cat writes
    // the console's lines to transcript.txt, as the stand-in does.
    auto [upper, upperId] = desktop_.Xterm(kServerTitle, "cat > transcript.txt", game_);

    // Every character that needs Shift on a US layout, and most that do not. The console may
    // map before it takes the focus, so each waits for activation to report it focused.
    const QString line = "say Hello, World! it's (ok) <x>: \"q\" @#$&* =;/.-[]\\_|?";
    ModPushKeys keys(keyboard);
    for (const QChar ch : line + "~") {
        ASSERT_TRUE(
            WaitUntil([&] { return Activated(services, FindServerWindow(services, 0)); }, 15s))
            << "lost the console before " << QString(ch);
        keys.PushKeys(QString(ch));
    }
    EXPECT_TRUE(WaitUntil([&] { return Transcript() == QStringList{line}; }, 10s))
        << "typed: " << ReadFile(GameFile("transcript.txt")).toStdString();

    enum Own { OfThisProcess, MainWindowItself, TransientForMain };
    for (const Own kind : {OfThisProcess, MainWindowItself, TransientForMain}) {
        SCOPED_TRACE(kind);
        RawWindow own(desktop_, "Hostwarden - Red Faction Dedicated Server",
                      {.ownPid = kind != TransientForMain,
                       .transientFor = kind == TransientForMain ? main.Id() : None});
        services.SetMainWindow(WindowHandle(kind == MainWindowItself ? own.Id() : main.Id()));
        ASSERT_TRUE(desktop_.Activate(own.Id()));
        ASSERT_TRUE(OnTop(desktop_, own.Id())) << "above the console";

        CloseWindowByTitle(services, kServerTitle);

        desktop_.Windows(); // a round trip: the X server has handled every request so far
        EXPECT_EQ(own.CloseRequests(), 0);
        EXPECT_EQ(main.CloseRequests(), 0);
        EXPECT_TRUE(upper.IsRunning());
    }

    auto [lower, lowerId] = desktop_.Xterm("my RED FACTION DEDICATED SERVER log");
    auto [part, partId] = desktop_.Xterm("Red Faction Dedicated");
    // The first one started is raised again, so "upper" is not merely "newest".
    ASSERT_TRUE(desktop_.Activate(upperId) && desktop_.Activate(partId));
    ASSERT_EQ(FindServerWindow(services, 0), upperId);
    EXPECT_TRUE(WaitUntil([&] { return Activated(services, upperId); }, 10s));
    EXPECT_EQ(desktop_.Active(), upperId);

    // Each walk closes the uppermost console left: its xterm ends and its window goes.
    const auto closesNext = [&](Process& xterm, WindowId id) {
        CloseWindowByTitle(services, kServerTitle);
        return xterm.WaitForExit(15s) && desktop_.WaitGone(id);
    };
    ASSERT_TRUE(closesNext(upper, upperId)) << "the upper console was not closed";
    ASSERT_TRUE(closesNext(lower, lowerId));
    EXPECT_TRUE(part.IsRunning());
    EXPECT_EQ(FindServerWindow(services, 0), 0u);

    // openbox ends the connection of a client that cannot be asked politely.
    auto [plain, plainId] = desktop_.Xterm(kServerTitle);
    desktop_.Properties(plainId, {"-remove", "WM_PROTOCOLS"});
    ASSERT_TRUE(closesNext(plain, plainId));

    RawWindow below(desktop_, kServerTitle, {.ownPid = false});
    ASSERT_TRUE(OnTop(desktop_, below.Id()));
    RawWindow console(desktop_, kServerTitle, {.ownPid = false});
    ASSERT_TRUE(OnTop(desktop_, console.Id()));
    RawWindow dialog(desktop_, "Really quit?",
                     {.ownPid = false, .transientFor = console.Id(), .modal = true});
    ASSERT_TRUE(OnTop(desktop_, dialog.Id()));
    EXPECT_EQ(services.GetStyle(WindowHandle(console.Id())), WS_DISABLED);
    EXPECT_EQ(services.GetStyle(WindowHandle(below.Id())), 0u);

    CloseWindowByTitle(services, kServerTitle);

    desktop_.Windows();
    for (RawWindow* window : {&below, &console, &dialog})
        EXPECT_EQ(window->CloseRequests(), 0);

    EXPECT_TRUE(services.IsConnected());
}

// Without a window manager, activation raises the window and focuses it itself. When the X
// server goes away the program keeps running: no windows are found, and keys fail.
TEST_F(Journey, WithoutAWindowManagerTheConsoleIsClosedAndALostServerIsSurvived) {
    Desktop bare(false);
    // A connection of someone else's (the toolkit's) keeps the handler it had: here one that
    // records the loss instead of ending the test.
    static bool otherLost = false;
    XSetIOErrorHandler([](::Display*) { return 0; });
    ::Display* other = XOpenDisplay(bare.Display().toLocal8Bit().constData());
    ASSERT_NE(other, nullptr);
    XSetIOErrorExitHandler(
        other, [](::Display*, void*) { otherLost = true; }, nullptr);
    X11WindowServices services(bare.Display().toLocal8Bit().constData());
    bare.UseInThisProcess();
    X11Keyboard keyboard;
    keyboard.KeyEvent(0x10, 0, 0); // Shift down and up: the keyboard's connection is open
    keyboard.KeyEvent(0x10, 0, KEYEVENTF_KEYUP);
    {
        RawWindow main(bare, "Hostwarden"), notes(bare, "notes", {.ownPid = false});
        auto console =
            std::make_unique<RawWindow>(bare, kServerTitle, WindowOptions{.ownPid = false});
        services.SetMainWindow(WindowHandle(main.Id()));

        EXPECT_TRUE(Activated(services, FindServerWindow(services, 0)));
        EXPECT_EQ(services.ClientWindows().front(), console->Id()) << "raised to the top";

        CloseWindowByTitle(services, kServerTitle);

        EXPECT_TRUE(WaitUntil([&] { return console->CloseRequests() == 1; }, 10s));
        EXPECT_EQ(notes.CloseRequests(), 0);
        EXPECT_EQ(main.CloseRequests(), 0);
        console.reset();
        EXPECT_TRUE(WaitUntil([&] { return FindServerWindow(services, 0) == 0; }, 10s));
    }

    bare.StopServer();
    EXPECT_THROW(keyboard.KeyEvent(0x10, 0, 0), KeySendError);
    XSync(other, False); // the loss travels the handler chain once, without recursing
    EXPECT_TRUE(otherLost);
    services.ActivateWindow(1);
    EXPECT_FALSE(services.HasFocus(1));
    EXPECT_FALSE(services.IsConnected());
    EXPECT_EQ(services.GetWindow(0, WindowRelation::First), 0u);
    CloseWindowByTitle(services, "notes");
    services.PostMessage(1, WM_CLOSE);
}

} // namespace
