#pragma once

#include <QString>
#include <QStringList>

class Hostwarden;

// Rebuilds the options text in TXTSTat from the working configuration and LSTMaps.
void BuildOptionsText(Hostwarden& w);
// Writes what TXTSTat holds now into the game directory's dedicated_server.txt.
// A file that cannot be written is reported; the result says whether it was written.
bool Write_File(Hostwarden& w);
// Sets the map-count label MCS to the number of LSTMaps entries + " Maps".
void UpdateMapCount(Hostwarden& w);

// The options text as it goes into the file: as built, or as the operator edited it.
QString OptionsText(const Hostwarden& w);
// What TXTSTat shows, line breaks and no-break spaces included.
QString ShownOptionsText(const Hostwarden& w);
QStringList MapList(const Hostwarden& w);
