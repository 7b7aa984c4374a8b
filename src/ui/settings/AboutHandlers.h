#pragma once

#include <QStringList>

class About;
class Hostwarden;

// The About window's text, line by line, without the line ends.
QStringList AboutLines();

// Main window: "About/Help" opens the About window.
void CMDAbout_Click(Hostwarden& w);

// Fills the text anew at every opening: each line followed by CR LF.
void About_Form_Load(About& d);
void About_CMDOK_Click(About& d);
// "Fix Reg": the settings reset, which ends the program when answered Yes.
void About_CMDReset_Click(About& d);
