#pragma once

#include "platform/WindowServices.h"

#include <QString>

// The title of the dedicated server's console window, as every caller passes it.
inline const QString kServerWindowTitle = QStringLiteral("Red Faction Dedicated Server");

// Asks the top-most window whose title contains `title` (any letter case) to close.
// Only that first match is considered; when it may not be closed nothing happens.
void CloseWindowByTitle(WindowServices& windows, const QString& title);

// Posts cancel-mode then close to `window`, unless it is the main window, is owned by
// it, or is disabled. Does not wait for the window to close.
void PostCloseRequest(WindowServices& windows, WindowHandle window);

// The console of the running server, 0 when there is none. Only a window whose title
// begins with the server title (any letter case) is taken; among those, the first in
// stacking order that belongs to `serverProcess` (the launched process tree), then the
// first whose whole title is the server title, then the first of the rest. A window
// that merely mentions the server in its title is never taken.
WindowHandle FindServerWindow(WindowServices& windows, std::int64_t serverProcess);
