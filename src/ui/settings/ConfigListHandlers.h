#pragma once

class Hostwarden;
class NewConf;
class CopyConfig;

// Main-window list commands: a new configuration, a copy of the one shown, and the
// deletion of the current one with the list renumbered.
void CMDNew_Click(Hostwarden& w);
void CMDCopy_Click(Hostwarden& w);
void CMDDelete_Click(Hostwarden& w);

void TXTNewName_Change(NewConf& d);
void TXTNewName_Change(CopyConfig& d);
// Returns the character code to keep; 0 discards the key. Enter runs the dialog's OK.
int TXTNewName_KeyPress(NewConf& d, int keyAscii);
int TXTNewName_KeyPress(CopyConfig& d, int keyAscii);

void NewConf_CMDOK_Click(NewConf& d);
void NewConf_CMDCancel_Click(NewConf& d);
void CopyConfig_Form_Load(CopyConfig& d);
void CopyConfig_CMDOK_Click(CopyConfig& d);
void CopyConfig_CMDCancel_Click(CopyConfig& d);
