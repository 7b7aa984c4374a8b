#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>

namespace e2e {

// A settings file as the program's own first run leaves it, ready for a later run.
struct LaterRun {
    QString rfLocation;                 // [Startup] RFLocation, as stored
    QString listEntry = "DEFAULT";      // [ConfName] Conf1
    QStringList startup;                // further [Startup] lines, "key=value"
    std::array<QString, 4> messages = { // Text0 … Text3 of the configuration
        "This Dedicated Server is running with Hostwarden 2.0 by Velloquin",
        "Visit us for updates.", "", ""};
};

QByteArray LaterRunSettings(const LaterRun& run);

} // namespace e2e
