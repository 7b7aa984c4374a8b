#pragma once

#include <QString>

#include <cstdint>

using WindowHandle = std::uint32_t; // 0 means none

enum class WindowRelation { First = 0, Next = 2, Owner = 4 };

constexpr std::uint32_t WS_DISABLED = 0x08000000;
constexpr std::uint32_t WM_CLOSE = 0x10;
constexpr std::uint32_t WM_CANCELMODE = 0x1F;

// Top-level windows of the desktop, as the server-window lookup needs them.
class WindowServices {
public:
    virtual ~WindowServices() = default;

    // First = the top-level window highest in stacking order; Next = the one below
    // `window`; Owner = the window `window` belongs to (0 when none).
    virtual WindowHandle GetWindow(WindowHandle window, WindowRelation relation) = 0;
    virtual bool IsWindow(WindowHandle window) = 0;
    virtual QString GetWindowText(WindowHandle window) = 0;
    virtual std::uint32_t GetStyle(WindowHandle window) = 0;
    virtual void PostMessage(WindowHandle window, std::uint32_t message) = 0;
    virtual WindowHandle MainWindow() = 0;
    // Names the program's main window once it exists.
    virtual void SetMainWindow(WindowHandle window) = 0;
    virtual void ProcessPendingEvents() = 0;

    // Whether `window` belongs to `process` or to a process it started, directly or not.
    virtual bool InProcessTree(WindowHandle window, std::int64_t process) = 0;
    // Asks for `window` to become the active window on the desktop the operator looks
    // at. Returns at once; HasFocus tells later whether it worked.
    virtual void ActivateWindow(WindowHandle window) = 0;
    // Whether `window` holds the keyboard focus now.
    virtual bool HasFocus(WindowHandle window) = 0;
    // Whether there is a window system to look in at all (an X display).
    virtual bool HasDisplay() = 0;
};
