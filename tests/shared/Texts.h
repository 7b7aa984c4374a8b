// Texts the operator meets and files the program writes, as the tests expect them.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace texts {

inline const QString kAppName = QStringLiteral("Hostwarden 2.0"); // names the settings file
inline const QString kMainTitle = QStringLiteral("Hostwarden 2.0.1 by Velloquin");
inline const QString kServerTitle = QStringLiteral("Red Faction Dedicated Server");
inline const QString kExitTitle = QStringLiteral("Save and exit or just exit");
inline const QString kServerErrorTitle = QStringLiteral("Server Error");
// The notice that automatic messages cannot be typed without an X display.
inline const QString kNoDisplayTitle = QStringLiteral("Auto Message");
inline const QString kNoDisplayStart =
    QStringLiteral("Automatic messages cannot be typed into the server console: typing needs an "
                   "X11 display (Xwayland)");

// The [Default] section the first run stores, besides its messages.
inline const QStringList kFirstRunDefaults = {
    "gametype=CTF",     "servname=$Me's Dedicated CTF Running Hostwarden 2.0",
    "name=Default",     "maxplayers=16",
    "password=",        "rconpass=",
    "maxtime=30",       "maxcaps=5",
    "maxkills=50",      "maxgeo=128",
    "teamdamage=false", "forcespawn=false",
    "balance=true",     "weaponstay=false",
    "falldamage=true",  "default=1",
    "MessageOn=1",      "MapCount=0"};

// dedicated_server.txt as a launch of the first-run configuration writes it.
inline const QByteArray kFirstRunOptions = "#Dedicated Server Options\r\n"
                                           "$Name:           \"Default\"\r\n"
                                           "$Server Name:    \"$Me's Dedicated CTF Running "
                                           "Hostwarden 2.0\"\r\n"
                                           "$Game Type:      \"CTF\"\r\n"
                                           "$Max Players:    16\r\n"
                                           "$Password:       \"\"\r\n"
                                           "$Rcon Password:  \"\"\r\n"
                                           "$Max Time:       30\r\n"
                                           "$Max Kills:      50\r\n"
                                           "$Max Captures:   5\r\n"
                                           "$Geomod Limit:   128\r\n"
                                           "$Team Damage:    False\r\n"
                                           "$Fall Damage:    True\r\n"
                                           "$Weapons Stay:    False\r\n"
                                           "$Force Respawn:  False\r\n"
                                           "$Balance Teams:  True\r\n";

} // namespace texts
