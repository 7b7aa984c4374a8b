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

// The options text and its form in the multi-line box. The box keeps line breaks of its
// own: CR LF shows as a paragraph break and a lone LF or CR as a line break within it.
// Text the operator has not touched is written exactly as it was built; a hand edit is
// taken back with CR LF for each paragraph break and LF for each line break.
class OptionsTextModel {
public:
    // The text the box should show for `exact`.
    static QString ToDisplay(const QString& exact);
    static QString FromDisplay(const QString& shown);

    // The box now shows ToDisplay(exact) for this built text.
    void Built(const QString& exact);
    // The box changed to `shown`, by the operator or during a rebuild.
    void Edited(const QString& shown);
    // What goes into the file.
    const QString& Text() const { return exact_; }

private:
    QString exact_;
    QString shown_;
};
