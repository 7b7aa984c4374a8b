#pragma once

#include <QString>
#include <QStringList>

class SettingsStore;

// The configuration list: section "ConfName", "ConfCount" = N and "Conf1" ... "ConfN".

// The names "Conf1" to "Conf" + "ConfCount", in order.
QStringList ReadConfigList(SettingsStore& store, const QString& app);

// Writes `name` as the next entry and the count that includes it; returns that count.
int AppendConfigName(SettingsStore& store, const QString& app, const QString& name);

// "Startup" and "ConfName" hold the program's own settings; the store takes a
// configuration of such a name, in any letter case, for that section.
bool IsFixedSectionName(const QString& name);

// Removes the entry that equals `name` exactly, with its section, and closes the gap in
// the numbering. Returns the entry's position (from 1), or 0 when no entry is `name`;
// the store is then left as it was. A section of the program's own is never deleted.
int DeleteConfigName(SettingsStore& store, const QString& app, const QString& name);

// Copies the configuration `source` into section `target`, which takes `target` as its
// name and no mod. Returns false, writing nothing, when `source` is not a stored
// configuration.
bool CopyConfigKeys(SettingsStore& store, const QString& app, const QString& source,
                    const QString& target);
