#include "automation/Module2.h"

void CloseWindowByTitle(WindowServices& windows, const QString& title) {
    const QString needle = title.toLower();
    WindowHandle h = windows.GetWindow(windows.MainWindow(), WindowRelation::First);
    while (h != 0) {
        if (windows.IsWindow(h)) {
            const QString text = windows.GetWindowText(h);
            if (!text.isEmpty() && text.toLower().contains(needle)) {
                PostCloseRequest(windows, h);
                return;
            }
        }
        h = windows.GetWindow(h, WindowRelation::Next);
        // Timers and buttons of the main window get their turn between windows.
        windows.ProcessPendingEvents();
    }
}

void PostCloseRequest(WindowServices& windows, WindowHandle window) {
    const WindowHandle main = windows.MainWindow();
    const WindowHandle owner = windows.GetWindow(window, WindowRelation::Owner);
    if (owner == main || window == main)
        return;
    if (windows.GetStyle(window) & WS_DISABLED)
        return;
    windows.PostMessage(window, WM_CANCELMODE);
    windows.PostMessage(window, WM_CLOSE);
}

ActivateResult ActivateServerWindow(WindowServices& windows) {
    return windows.ActivateByTitle(kServerWindowTitle);
}
