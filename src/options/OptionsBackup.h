#pragma once

#include <QString>

// An operator's own dedicated_server.txt is kept before Hostwarden first replaces it.
// `recordFile` lists the game directories Hostwarden has written into, one a line.

// Before a write into `gameDir`: when Hostwarden has never written there and the
// directory holds a dedicated_server.txt, copy it to dedicated_server.txt.bak unless
// that backup exists already. False, with `error` set, when the copy failed.
bool BackUpOptionsFile(const QString& gameDir, const QString& recordFile, QString* error);

// After a write into `gameDir`: remember that the file there is Hostwarden's own.
void RecordOptionsWritten(const QString& gameDir, const QString& recordFile);
