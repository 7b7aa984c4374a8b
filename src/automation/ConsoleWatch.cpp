#include "automation/ConsoleWatch.h"

#include "automation/Module2.h"

bool ServerWindowShown(WindowServices& windows) {
    for (WindowHandle h = windows.GetWindow(windows.MainWindow(), WindowRelation::First); h != 0;
         h = windows.GetWindow(h, WindowRelation::Next)) {
        if (windows.IsWindow(h) &&
            windows.GetWindowText(h).contains(kServerWindowTitle, Qt::CaseInsensitive))
            return true;
    }
    return false;
}
