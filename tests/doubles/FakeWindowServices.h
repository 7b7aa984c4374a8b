#pragma once

#include "platform/WindowServices.h"

#include <QList>

#include <functional>

// In-memory desktop: windows in stacking order, top first, none of them disabled.
class FakeWindowServices : public WindowServices {
public:
    struct Window {
        WindowHandle handle = 0;
        QString title;
        WindowHandle owner = 0;
        bool gone = false;
        std::int64_t process = 0; // the launched process tree it belongs to
    };
    struct Post {
        WindowHandle window;
        std::uint32_t message;
        bool operator==(const Post&) const = default;
    };

    // Adds a window below the existing ones and returns its handle.
    WindowHandle Add(const QString& title, WindowHandle owner = 0) {
        windows.append({next_, title, owner});
        return next_++;
    }
    // Destroyed, it keeps its place and title, as a backend that read the desktop before reports.
    void Vanish(WindowHandle window) {
        for (Window& w : windows)
            w.gone = w.gone || w.handle == window;
    }

    WindowHandle GetWindow(WindowHandle window, WindowRelation relation) override {
        if (relation == WindowRelation::First)
            return windows.isEmpty() ? 0 : windows.first().handle;
        const Window* w = Find(window);
        if (relation == WindowRelation::Owner || !w)
            return w ? w->owner : 0;
        return w == &windows.constLast() ? 0 : (w + 1)->handle;
    }
    bool IsWindow(WindowHandle w) override { return Find(w) && !Find(w)->gone; }
    QString GetWindowText(WindowHandle w) override { return Find(w) ? Find(w)->title : QString(); }
    std::uint32_t GetStyle(WindowHandle) override { return 0; }
    void PostMessage(WindowHandle w, std::uint32_t message) override { posts.append({w, message}); }
    WindowHandle MainWindow() override { return mainWindow; }
    void SetMainWindow(WindowHandle window) override { mainWindow = window; }
    void ProcessPendingEvents() override {
        if (onPendingEvents)
            onPendingEvents();
    }
    bool InProcessTree(WindowHandle w, std::int64_t process) override {
        return Find(w) && Find(w)->process == process;
    }
    void ActivateWindow(WindowHandle w) override {
        if (!focusStolen && IsWindow(w))
            focus = w;
    }
    bool HasFocus(WindowHandle w) override { return focus == w && IsWindow(w); }
    bool HasDisplay() override { return !noDisplay; }

    QList<Window> windows;
    QList<Post> posts;
    WindowHandle mainWindow = 0, focus = 0;
    bool focusStolen = false; // activation leaves the focus where it is
    bool noDisplay = false;
    std::function<void()> onPendingEvents; // lets a test change the desktop mid-walk

private:
    const Window* Find(WindowHandle window) const {
        for (const Window& w : windows)
            if (w.handle == window)
                return &w;
        return nullptr;
    }
    WindowHandle next_ = 100;
};
