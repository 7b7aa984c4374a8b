#pragma once

class Setup;

// Reads the first-run flag and the stored game directory; on a later run goes on to
// the main window at once, on the first run warns and waits for the operator.
void Setup_Form_Load(Setup& s);
// Shows the window, centred on the screen, when the load left it waiting for the operator.
void ShowSetup(Setup& s);
void TXTRFLocate_Change(Setup& s);
// Stores the game directory, creates the first-run settings when needed and brings up
// the main window in place of the Setup window.
void Setup_CMDOK_Click(Setup& s);
void Setup_CMDCancel_Click(Setup& s);
