#pragma once

#include <QString>
#include <QStringList>

// What the stand-in understood of the game's options file.
struct ServerOptions {
    bool found = false;
    QStringList understood;    // "Server name: My Server", "Maps (2): ctf01.rfl, ctf02.rfl", ...
    QStringList notUnderstood; // lines it could not place, as they were
};

// Reads `dedicated_server.txt` (Windows-1252, CR LF lines).
ServerOptions ReadServerOptions(const QString& path);

// The text of Windows-1252 bytes.
QString DecodeWindows1252(const QByteArray& bytes);
