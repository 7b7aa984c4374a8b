#pragma once

#include "platform/WindowServices.h"

// Whether a window titled as the server console (any letter case) is on the desktop.
bool ServerWindowShown(WindowServices& windows);
