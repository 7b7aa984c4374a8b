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

// The text of TXTSTat with CR LF line ends, as it goes into the file.
QString OptionsText(const Hostwarden& w);
QStringList MapList(const Hostwarden& w);
