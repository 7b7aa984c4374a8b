#pragma once

#include <QString>

class Hostwarden;

// The server's command line for the working configuration and the launch switches.
QString ServerCommandLine(const Hostwarden& w);

// Asks the old console to close, writes the options file, stores the configuration
// and starts the server; a started server begins the message countdown.
void CMDLaunch_Click(Hostwarden& w);
void CMDExit_Click(Hostwarden& w);
void CMDMin_Click(Hostwarden& w);
