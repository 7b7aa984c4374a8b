#pragma once

class Hostwarden;

// Loads the section named CurrentConf into the main window's controls.
void LoadConfig(Hostwarden& w);
// Writes the configuration shown into the section named CurrentConf.
void SaveConfig(Hostwarden& w);
// Refills LSTConfig from the list in the store, then loads CurrentConf.
void FillConfigList(Hostwarden& w);

void LSTConfig_Click(Hostwarden& w);
void CMDLoad_Click(Hostwarden& w);
void CMDSave_Click(Hostwarden& w);
void TXTConfName_Change(Hostwarden& w);
// Returns the character code to keep; 0 discards the key.
int TXTConfName_KeyPress(Hostwarden& w, int keyAscii);
