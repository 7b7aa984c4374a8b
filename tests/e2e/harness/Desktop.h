#pragma once

#include "Process.h"

#include <QPoint>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace e2e {

using WindowId = unsigned long;

enum class TitleMatch { Exact, Contains }; // Contains ignores letter case

// Looks at and drives the desktop of an X display the way a person would, through
// xdotool, xwininfo, xprop and ImageMagick, so the program under test is watched by
// independent tools.
class Desktop {
public:
    explicit Desktop(const QString& display) : display_(display) {}

    // The window manager's client windows, top of the stacking order first.
    std::vector<WindowId> Windows() const;
    QStringList WindowTitles() const;
    std::optional<WindowId> FindWindow(const QString& title,
                                       TitleMatch match = TitleMatch::Exact) const;
    // Polls until a window with the title is shown; nothing on timeout.
    std::optional<WindowId> WaitForWindow(const QString& title,
                                          TitleMatch match = TitleMatch::Exact,
                                          std::chrono::milliseconds timeout = 20s) const;
    bool WaitForWindowGone(WindowId window, std::chrono::milliseconds timeout = 10s) const;
    bool WindowExists(WindowId window) const;
    QString WindowTitle(WindowId window) const;

    // Moves the pointer to `position` inside the window's client area and clicks.
    bool Click(WindowId window, QPoint position) const;
    // Types into whichever window has the keyboard focus.
    bool TypeText(const QString& text) const;
    // One key or chord by X keysym name: "Return", "Tab", "alt+y".
    bool PressKey(const QString& keys) const;
    // Asks the window manager to activate the window and waits until it is active.
    bool Activate(WindowId window) const;
    std::optional<WindowId> ActiveWindow() const;
    std::optional<WindowId> FocusedWindow() const;

    // Saves a PNG of the window (or of the whole screen when 0) under the artifacts
    // folder as `name`.png and returns its path; empty on failure.
    QString Screenshot(const QString& name, WindowId window = 0) const;

    // Runs an X tool against this display.
    ToolResult Run(const QString& program, const QStringList& args) const {
        return RunTool(program, args, {"DISPLAY=" + display_});
    }

private:
    QString display_;
};

} // namespace e2e
