#pragma once

#include <QString>

class Hostwarden;

// The main window's load step: option lists, the "DEFAULT" configuration, the
// start-up preferences and the options text.
void Hostwarden_Form_Load(Hostwarden& w);

void CHKGameTracker_Click(Hostwarden& w);
void CHKPort_Click(Hostwarden& w);
void CHKServRec_Click(Hostwarden& w);
void TXTPort_Change(Hostwarden& w);

// Whether a text converts to a number: digits, a decimal such as 12.5, a sign or an
// exponent; the empty text does not.
bool IsNumeric(const QString& text);
