#pragma once

class Hostwarden;
class Mods;

// Main window: "Mods" opens the Mods dialog; "Remove" goes back to no mod ("None").
void CMDMod_Click(Hostwarden& w);
void CMDRemovemod_Click(Hostwarden& w);

// Lists the usable mods of the game directory.
void Mods_Form_Load(Mods& d);
void LSTMod_Click(Mods& d);
// Hands the dialog's mod, "None" unless one was picked, to the main window.
void Mods_CMDOK_Click(Mods& d);
void Mods_CMDCancel_Click(Mods& d);
