#pragma once

#include <QString>

#include <cstdint>

// Booleans kept in memory are 16-bit: 0 is false, -1 is true.
using VBool = std::int16_t;
constexpr VBool kTrue = -1;
constexpr VBool kFalse = 0;

// The application-wide record that lives for the whole run: the program's settings and
// the working copy of the current configuration.
struct AppState {
    // Settings application name; set first thing, used by every store access.
    QString AppName;
    QString SetupDone;
    QString GameDir;
    QString ServerExe;
    QString Saved;
    QString CurrentConf;
    QString NewConfName;
    QString MapListMode;
    std::int16_t MessageRate = 0;

    // Working copy of the current configuration, named after its settings keys.
    QString gametype;
    QString servname;
    QString name;
    QString maxplayers;
    QString password;
    QString rconpass;
    QString maxtime;
    QString maxkills;
    QString maxcaps;
    QString maxgeo;
    VBool teamdamage = kFalse;
    VBool falldamage = kFalse;
    VBool weaponstay = kFalse;
    VBool forcespawn = kFalse;
    VBool balance = kFalse;
};
