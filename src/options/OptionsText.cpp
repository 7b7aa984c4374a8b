#include "options/OptionsText.h"

#include "platform/Ansi.h"
#include "settings/AtomicFile.h"

#include <QFile>

namespace {

QString Quoted(const QString& value) {
    return '"' + value + '"';
}

QString TrueFalse(VBool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

} // namespace

QString ComposeOptionsText(const AppState& s, const QStringList& maps) {
    const QString crlf = QStringLiteral("\r\n");
    QString text;
    const auto line = [&](const char* label, const QString& value) {
        text += QLatin1String(label) + value + crlf;
    };
    text += QStringLiteral("#Dedicated Server Options") + crlf;
    line("$Name:           ", Quoted(s.name.trimmed()));
    line("$Server Name:    ", Quoted(s.servname));
    line("$Game Type:      ", Quoted(s.gametype));
    line("$Max Players:    ", s.maxplayers);
    line("$Password:       ", Quoted(s.password));
    line("$Rcon Password:  ", Quoted(s.rconpass));
    line("$Max Time:       ", s.maxtime);
    line("$Max Kills:      ", s.maxkills);
    line("$Max Captures:   ", s.maxcaps);
    line("$Geomod Limit:   ", s.maxgeo);
    line("$Team Damage:    ", TrueFalse(s.teamdamage));
    line("$Fall Damage:    ", TrueFalse(s.falldamage));
    line("$Weapons Stay:    ", TrueFalse(s.weaponstay));
    line("$Force Respawn:  ", TrueFalse(s.forcespawn));
    line("$Balance Teams:  ", TrueFalse(s.balance));
    for (const QString& map : maps)
        line("$Map:            ", Quoted(map));
    return text;
}

bool WriteOptionsFile(const QString& gameDir, const QString& text, QString* error) {
    // The file holds the passwords, so it is the operator's alone; written to a new file
    // and renamed over the old one, it is never missing or half written.
    const QString path = gameDir + QStringLiteral("dedicated_server.txt");
    QString problem;
    if (WriteFileAtomically(path, ToAnsi(text), &problem, MissingFolder::Fail))
        return true;
    if (error)
        *error = QStringLiteral("%1 could not be written: %2").arg(path, problem);
    return false;
}
