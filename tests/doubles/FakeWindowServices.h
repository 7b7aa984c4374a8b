#pragma once

#include "platform/WindowServices.h"

#include <QList>

#include <functional>

// In-memory desktop: windows in stacking order, top first.
class FakeWindowServices : public WindowServices {
public:
    struct Window {
        WindowHandle handle = 0;
        QString title;
        WindowHandle owner = 0;
        std::uint32_t style = 0;
        bool gone = false;
    };
    struct Post {
        WindowHandle window;
        std::uint32_t message;
        bool operator==(const Post&) const = default;
    };

    // Adds a window below the existing ones and returns its handle.
    WindowHandle Add(const QString& title, WindowHandle owner = 0, std::uint32_t style = 0);
    void Remove(WindowHandle window);
    // The window is destroyed but keeps its place in the stacking order and its last
    // title, as a backend that read the desktop before it changed would report them.
    void Vanish(WindowHandle window);

    WindowHandle GetWindow(WindowHandle window, WindowRelation relation) override;
    bool IsWindow(WindowHandle window) override;
    QString GetWindowText(WindowHandle window) override;
    std::uint32_t GetStyle(WindowHandle window) override;
    void PostMessage(WindowHandle window, std::uint32_t message) override;
    WindowHandle MainWindow() override { return mainWindow; }
    void SetMainWindow(WindowHandle window) override { mainWindow = window; }
    void ProcessPendingEvents() override;
    ActivateResult ActivateByTitle(const QString& title) override;

    QList<Window> windows;
    QList<Post> posts;
    QList<QString> activations;
    WindowHandle mainWindow = 0;
    // When set, activation finds the window but the focus stays elsewhere.
    bool focusStolen = false;
    // Runs on every ProcessPendingEvents, to let a test change the desktop mid-walk.
    std::function<void()> onPendingEvents;

private:
    WindowHandle next_ = 100;
};
