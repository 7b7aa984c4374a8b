#pragma once

#include "server/AppState.h"

#include <QString>
#include <QStringList>

#include <optional>

class SettingsStore;

// Writes the first-run configuration into section "Default" and makes it the only
// entry of the configuration list.
void CreateDefaultConfig(SettingsStore& store, const QString& app);

// Writes the section named CurrentConf with the new-configuration defaults, replacing
// a stored configuration of that name, and marks the configuration saved.
void CreateNewConfig(SettingsStore& store, AppState& state);

// Reading rules for stored fields. A number is decimal text; a boolean is "true" or
// "false" in any letter case. Anything else reads as nothing.
std::optional<int> ReadNumber(const QString& text);
std::optional<bool> ReadBoolean(const QString& text);

// How many of the keys prefix + 0 … prefix + (count − 1) to read: `count`, but never
// beyond the highest such key among `keys`, so a hand-edited huge count costs nothing.
int NumberedCount(const QStringList& keys, const QString& prefix, int count);

// The new-configuration defaults, used where a stored field cannot be read.
struct ConfigDefaults {
    static constexpr int maxplayers = 16;
    static constexpr int maxtime = 30;
    static constexpr int maxcaps = 5;
    static constexpr int maxkills = 50;
    static constexpr int maxgeo = 128;
    static constexpr bool teamdamage = false;
    static constexpr bool forcespawn = false;
    static constexpr bool balance = true;
    static constexpr bool weaponstay = false;
    static constexpr bool falldamage = true;
};

QString DefaultMessage0();
QString DefaultMessage1();
