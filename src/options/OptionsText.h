#pragma once

#include "server/AppState.h"

#include <QString>
#include <QStringList>

// The content of dedicated_server.txt for the working configuration: 16 lines, then one
// line per map, every line ending in CR LF.
QString ComposeOptionsText(const AppState& state, const QStringList& maps);

// Replaces gameDir + "dedicated_server.txt" with `text`, one Windows-1252 byte per
// character, atomically and readable by the owner only; the folder must exist. Returns false and
// sets `error` when the file cannot be written.
bool WriteOptionsFile(const QString& gameDir, const QString& text, QString* error);
