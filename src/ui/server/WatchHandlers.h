#pragma once

class Hostwarden;

// Seconds a launched server has to show its console window before the operator is told.
inline constexpr int kConsoleWatchSeconds = 30;

// Tells the operator once when the server launched last still runs without a console.
void ConsoleWatch_Timer(Hostwarden& w);
