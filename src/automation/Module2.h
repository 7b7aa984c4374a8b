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

// Brings the server console to the front; NotFound when no server window is there.
ActivateResult ActivateServerWindow(WindowServices& windows);
