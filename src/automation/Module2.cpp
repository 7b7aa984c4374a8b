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

WindowHandle FindServerWindow(WindowServices& windows, std::int64_t serverProcess) {
    enum Rank { OwnServer, WholeTitle, LeadingTitle, None };
    WindowHandle best = 0;
    Rank bestRank = None;
    for (WindowHandle h = windows.GetWindow(windows.MainWindow(), WindowRelation::First);
         h != 0 && bestRank != OwnServer; h = windows.GetWindow(h, WindowRelation::Next)) {
        if (!windows.IsWindow(h))
            continue;
        const QString text = windows.GetWindowText(h);
        if (!text.startsWith(kServerWindowTitle, Qt::CaseInsensitive))
            continue;
        Rank rank = text.size() == kServerWindowTitle.size() ? WholeTitle : LeadingTitle;
        if (serverProcess != 0 && windows.InProcessTree(h, serverProcess))
            rank = OwnServer;
        if (rank < bestRank) {
            best = h;
            bestRank = rank;
        }
    }
    return best;
}
