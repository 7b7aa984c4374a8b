#pragma once

#include "platform/WindowServices.h"

#include <QByteArray>

#include <vector>

typedef struct _XDisplay Display;

// Top-level client windows of the X display named by $DISPLAY, over a connection of
// its own. Handles are X window ids of client windows (the windows programs create,
// not the frames a window manager wraps them in).
//
// The program must name its main window with SetMainWindow: windows of this process and
// windows transient for them count as owned by it, and the close walk leaves them alone.
class X11WindowServices : public WindowServices {
public:
    X11WindowServices();
    explicit X11WindowServices(const char* displayName);
    ~X11WindowServices() override;
    X11WindowServices(const X11WindowServices&) = delete;
    X11WindowServices& operator=(const X11WindowServices&) = delete;

    // False when the display could not be opened or the connection was lost; every
    // operation then reports no windows.
    bool IsConnected() const { return display_ != nullptr && !lost_; }
    // The X id of the program's main window (QWidget::winId() under xcb).
    void SetMainWindow(WindowHandle window) override { mainWindow_ = window; }

    WindowHandle GetWindow(WindowHandle window, WindowRelation relation) override;
    bool IsWindow(WindowHandle window) override;
    QString GetWindowText(WindowHandle window) override;
    std::uint32_t GetStyle(WindowHandle window) override;
    void PostMessage(WindowHandle window, std::uint32_t message) override;
    WindowHandle MainWindow() override { return mainWindow_; }
    void ProcessPendingEvents() override;
    bool InProcessTree(WindowHandle window, std::int64_t process) override;
    void ActivateWindow(WindowHandle window) override;
    bool HasFocus(WindowHandle window) override;
    bool HasDisplay() override { return display_ != nullptr; }

    // Client windows in stacking order, top first.
    std::vector<WindowHandle> ClientWindows();

private:
    enum Atom_ {
        NetClientListStacking,
        NetWmName,
        Utf8String,
        WmState,
        NetWmPid,
        WmClientMachine,
        NetWmState,
        NetWmStateModal,
        WmProtocols,
        WmDeleteWindow,
        NetCloseWindow,
        NetActiveWindow,
        NetSupportingWmCheck,
        NetWmDesktop,
        NetCurrentDesktop,
        AtomCount
    };

    void Open(const char* displayName);
    static void ConnectionLost(Display* display, void* self);
    std::vector<unsigned long> ReadWindowList(unsigned long window, Atom_ property);
    QByteArray ReadProperty(unsigned long window, unsigned long property, unsigned long type,
                            int format, unsigned long* actualType = nullptr);
    std::vector<WindowHandle> ClientsFromTree();
    unsigned long FindClient(unsigned long window, int depth);
    bool IsOwnProcess(unsigned long window);
    unsigned long TransientFor(unsigned long window);
    bool HasWindowManager();
    // The process id a window names as its own (on this machine); 0 when none.
    long ProcessOf(unsigned long window);
    void SendToRoot(unsigned long window, Atom_ type, long l0, long l1);

    Display* display_ = nullptr;
    bool lost_ = false;
    unsigned long root_ = 0;
    unsigned long atoms_[AtomCount] = {};
    WindowHandle mainWindow_ = 0;
    QByteArray hostName_;
    // The stacking order read when the walk asked for the first window.
    std::vector<WindowHandle> walk_;
};
