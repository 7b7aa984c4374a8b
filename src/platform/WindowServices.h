#pragma once

#include <QString>

#include <cstdint>

using WindowHandle = std::uint32_t; // 0 means none

enum class WindowRelation { First = 0, Next = 2, Owner = 4 };

constexpr std::uint32_t WS_DISABLED = 0x08000000;
constexpr std::uint32_t WM_CLOSE = 0x10;
constexpr std::uint32_t WM_CANCELMODE = 0x1F;

enum class ActivateResult {
    Activated,  // the window is in front and holds the input focus
    NotFound,   // no window answers to the title
    NotFocused, // the window is there but the focus stayed elsewhere
    NoDisplay,  // there is no window system to find it in (no X display)
};

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

    // Brings the window whose title contains `title` (any letter case) to the front.
    virtual ActivateResult ActivateByTitle(const QString& title) = 0;
};
