#include "settings/ConfigList.h"

#include "platform/SettingsStore.h"
#include "settings/ServerConfig.h"

namespace {

const QString kList = QStringLiteral("ConfName");

QString Key(int i) {
    return QStringLiteral("Conf") + QString::number(i);
}

// A hand-edited count never reaches past the highest entry the list holds.
int Count(SettingsStore& store, const QString& app) {
    return StoredCount(store, app, kList, QStringLiteral("ConfCount"), QStringLiteral("Conf"), 1);
}

} // namespace

QStringList ReadConfigList(SettingsStore& store, const QString& app) {
    QStringList names;
    const int count = Count(store, app);
    for (int i = 1; i <= count; ++i)
        names << store.GetSetting(app, kList, Key(i));
    return names;
}

int AppendConfigName(SettingsStore& store, const QString& app, const QString& name) {
    const SettingsBatch batch(store);
    const int count = Count(store, app) + 1;
    store.SaveSetting(app, kList, "ConfCount", QString::number(count));
    store.SaveSetting(app, kList, Key(count), name);
    return count;
}

bool IsFixedSectionName(const QString& name) {
    return name.compare(QLatin1String("Startup"), Qt::CaseInsensitive) == 0 ||
           name.compare(kList, Qt::CaseInsensitive) == 0;
}

int DeleteConfigName(SettingsStore& store, const QString& app, const QString& name) {
    const int total = Count(store, app);
    int x = 1;
    while (x <= total && store.GetSetting(app, kList, Key(x)) != name)
        ++x;
    if (x > total)
        return 0;
    const SettingsBatch batch(store);
    if (!IsFixedSectionName(name))
        store.DeleteSection(app, name);
    store.DeleteSetting(app, kList, Key(x));
    for (int y = x + 1; y <= total; ++y) {
        const QString moved = store.GetSetting(app, kList, Key(y));
        store.DeleteSetting(app, kList, Key(y));
        store.SaveSetting(app, kList, Key(y - 1), moved);
    }
    store.SaveSetting(app, kList, "ConfCount", QString::number(total - 1));
    return x;
}

bool CopyConfigKeys(SettingsStore& store, const QString& app, const QString& source,
                    const QString& target) {
    if (store.GetSetting(app, source, "default") != QLatin1String("1"))
        return false;
    const SettingsBatch batch(store);
    const auto copy = [&](const QString& key) {
        store.SaveSetting(app, target, key, store.GetSetting(app, source, key));
    };
    copy("gametype");
    copy("servname");
    store.SaveSetting(app, target, "name", target);
    for (const char* key :
         {"maxplayers", "password", "rconpass", "maxtime", "maxcaps", "maxkills", "maxgeo",
          "teamdamage", "forcespawn", "balance", "weaponstay", "falldamage", "default", "Text0",
          "Text1", "Text2", "Text3", "MessageOn", "MapCount"})
        copy(QLatin1String(key));
    // The count is read again before each map, as the source may name fewer maps than it
    // claims; a hand-edited count stops at the first missing map.
    for (int i = 0; i < ReadNumber(store.GetSetting(app, source, "MapCount")).value_or(0); ++i) {
        const QString map = store.GetSetting(app, source, "Map" + QString::number(i));
        if (map.isEmpty())
            break;
        store.SaveSetting(app, target, "map" + QString::number(i), map);
    }
    return true;
}
