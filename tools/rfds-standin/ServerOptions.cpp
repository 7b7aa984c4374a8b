#include "ServerOptions.h"

#include <QFile>
#include <QHash>

#include <array>

namespace {

// Bytes 0x80..0x9F; the five the code page leaves undefined keep their own value.
constexpr std::array<char16_t, 32> kHighBlock = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178,
};

QString Unquote(const QString& value) {
    if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
        return value.mid(1, value.size() - 2);
    return value;
}

} // namespace

QString DecodeWindows1252(const QByteArray& bytes) {
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        text += (code >= 0x80 && code < 0xA0) ? QChar(kHighBlock[code - 0x80]) : QChar(code);
    }
    return text;
}

ServerOptions ReadServerOptions(const QString& path) {
    ServerOptions options;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return options;
    options.found = true;

    static const QHash<QString, QString> kLabels = {
        {"$Name", "Name"},
        {"$Server Name", "Server name"},
        {"$Game Type", "Game type"},
        {"$Max Players", "Max players"},
        {"$Max Time", "Max time"},
        {"$Max Kills", "Max kills"},
        {"$Max Captures", "Max captures"},
        {"$Geomod Limit", "Geomod limit"},
        {"$Team Damage", "Team damage"},
        {"$Fall Damage", "Fall damage"},
        {"$Weapons Stay", "Weapons stay"},
        {"$Force Respawn", "Force respawn"},
        {"$Balance Teams", "Balance teams"},
    };

    QStringList maps;
    const QStringList lines = DecodeWindows1252(file.readAll()).split(QLatin1Char('\n'));
    for (QString line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.trimmed().isEmpty() || line == QLatin1String("#Dedicated Server Options"))
            continue;
        const qsizetype colon = line.indexOf(QLatin1Char(':'));
        const QString label = colon > 0 ? line.left(colon) : QString();
        const QString value = Unquote(line.mid(colon + 1).trimmed());
        if (label == QLatin1String("$Map")) {
            maps << value;
        } else if (label == QLatin1String("$Password") ||
                   label == QLatin1String("$Rcon Password")) {
            const QString shown =
                label == QLatin1String("$Password") ? "Password" : "Rcon password";
            options.understood << shown + (value.isEmpty() ? ": none" : ": set");
        } else if (kLabels.contains(label)) {
            options.understood << kLabels.value(label) + ": " + value;
        } else {
            options.notUnderstood << line;
        }
    }
    options.understood
        << (maps.isEmpty() ? QStringLiteral("Maps: none")
                           : QStringLiteral("Maps (%1): %2").arg(maps.size()).arg(maps.join(", ")));
    return options;
}
