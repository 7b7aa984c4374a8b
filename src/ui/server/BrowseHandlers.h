#pragma once

class Browse;
class Setup;

// Setup's Browse: opens the Browse dialog and disables Setup until Browse's OK.
void CMDBrowse_Click(Setup& s);

// Offers the drives and opens the home folder.
void Browse_Form_Load(Browse& b);
void Drive1_Change(Browse& b);
// Points the hidden file list at the open folder; OK is enabled only when it holds the
// game executable, in any letter case.
void Dir1_Change(Browse& b);
// Hands the open folder, ending in "/", to Setup and enables Setup's OK.
void Browse_CMDOK_Click(Browse& b);
// Ends the program, as every Cancel of the first run does.
void Browse_CMDCancel_Click(Browse& b);
