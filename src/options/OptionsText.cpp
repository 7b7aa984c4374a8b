#include "options/OptionsText.h"

#include "platform/Ansi.h"
#include "settings/AtomicFile.h"

#include <QFile>

#include <algorithm>

namespace {

QString Quoted(const QString& value) {
    return '"' + value + '"';
}

// Only blanks come off the name; tabs and no-break spaces are part of it.
QString TrimBlanks(const QString& text) {
    qsizetype begin = 0, end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    return text.mid(begin, end - begin);
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
    line("$Name:           ", Quoted(TrimBlanks(s.name)));
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

QString OptionsTextModel::ToDisplay(const QString& exact) {
    QString shown;
    shown.reserve(exact.size());
    for (qsizetype i = 0; i < exact.size(); ++i) {
        const QChar ch = exact[i];
        if (ch == u'\r' && i + 1 < exact.size() && exact[i + 1] == u'\n') {
            shown += QChar::ParagraphSeparator;
            ++i;
        } else if (ch == u'\r' || ch == u'\n') {
            shown += QChar::LineSeparator;
        } else {
            shown += ch;
        }
    }
    return shown;
}

QString OptionsTextModel::FromDisplay(const QString& shown) {
    QString exact;
    exact.reserve(shown.size() + shown.size() / 16);
    for (const QChar ch : shown) {
        if (ch == QChar::ParagraphSeparator || ch == u'\n')
            exact += QLatin1String("\r\n");
        else if (ch == QChar::LineSeparator)
            exact += u'\n';
        else
            exact += ch;
    }
    return exact;
}

void OptionsTextModel::Built(const QString& exact) {
    exact_ = exact;
    shown_ = ToDisplay(exact);
}

// Only the part the operator changed is taken from the box; the text around it stays
// exactly as it was.
void OptionsTextModel::Edited(const QString& shown) {
    if (shown == shown_)
        return;
    qsizetype prefix = 0;
    const qsizetype common = std::min(shown.size(), shown_.size());
    while (prefix < common && shown[prefix] == shown_[prefix])
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < common - prefix &&
           shown[shown.size() - 1 - suffix] == shown_[shown_.size() - 1 - suffix])
        ++suffix;
    // Positions in the box stand for one character of the text, or for CR LF.
    const auto exactIndex = [this](qsizetype shownIndex) {
        qsizetype i = 0;
        for (qsizetype d = 0; d < shownIndex && i < exact_.size(); ++d)
            i += exact_.mid(i, 2) == QLatin1String("\r\n") ? 2 : 1;
        return i;
    };
    const qsizetype begin = exactIndex(prefix);
    const qsizetype end = exactIndex(shown_.size() - suffix);
    exact_ = exact_.left(begin) + FromDisplay(shown.mid(prefix, shown.size() - suffix - prefix)) +
             exact_.mid(end);
    shown_ = shown;
}
