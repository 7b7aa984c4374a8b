#include "settings/ServerConfig.h"

#include "platform/SettingsStore.h"
#include "settings/ProjectInfo.h"

#include <algorithm>

QString DefaultMessage0() {
    return QStringLiteral("This Dedicated Server is running with Hostwarden 2.0 by Velloquin");
}

QString DefaultMessage1() {
    return QStringLiteral("Visit ") + kProjectAddress + QStringLiteral(" for updates.");
}

namespace {

// The defaults of a configuration, in the order they are written. The first-run
// configuration writes its map count last and has no mod; a new one writes both in
// the middle.
void WriteDefaults(SettingsStore& store, const QString& app, const QString& section,
                   const QString& servname, const QString& name, bool firstRun) {
    const auto put = [&](const QString& key, const QString& value) {
        store.SaveSetting(app, section, key, value);
    };
    put("gametype", "CTF");
    put("servname", servname);
    put("name", name);
    put("maxplayers", "16");
    put("password", "");
    put("rconpass", "");
    put("maxtime", "30");
    put("maxcaps", "5");
    put("maxkills", "50");
    put("maxgeo", "128");
    put("teamdamage", "false");
    put("forcespawn", "false");
    put("balance", "true");
    put("weaponstay", "false");
    put("falldamage", "true");
    if (!firstRun)
        put("mapcount", "0");
    put("default", "1");
    if (!firstRun)
        put("Mod", "");
    put("Text0", DefaultMessage0());
    put("Text1", DefaultMessage1());
    put("Text2", "");
    put("Text3", "");
    put("MessageOn", "1");
    if (firstRun)
        put("MapCount", "0");
}

} // namespace

void CreateDefaultConfig(SettingsStore& store, const QString& app) {
    const SettingsBatch batch(store);
    WriteDefaults(store, app, "Default", "$Me's Dedicated CTF Running Hostwarden 2.0", "Default",
                  true);
    store.SaveSetting(app, "ConfName", "ConfCount", "1");
    store.SaveSetting(app, "ConfName", "Conf1", "DEFAULT");
}

void CreateNewConfig(SettingsStore& store, AppState& state) {
    const QString& section = state.CurrentConf;
    const SettingsBatch batch(store);
    if (store.GetSetting(state.AppName, section, "default") == "1")
        store.DeleteSection(state.AppName, section);
    WriteDefaults(store, state.AppName, section, "$Me's Dedicated CTF running Hostwarden 2.0",
                  section, false);
    state.Saved = "yes";
}

void SaveConfigSection(SettingsStore& store, const AppState& s, const WindowFields& fields) {
    const SettingsBatch batch(store);
    const auto put = [&](const QString& key, const QString& value) {
        store.SaveSetting(s.AppName, s.CurrentConf, key, value);
    };
    // The whole section is rewritten, so that no map beyond the new count survives.
    if (store.GetSetting(s.AppName, s.CurrentConf, "default") == QLatin1String("1"))
        store.DeleteSection(s.AppName, s.CurrentConf);
    put("gametype", s.gametype);
    put("servname", s.servname);
    put("name", s.CurrentConf);
    put("maxplayers", s.maxplayers);
    put("password", s.password);
    put("rconpass", s.rconpass);
    put("maxtime", s.maxtime);
    put("maxcaps", s.maxcaps);
    put("maxkills", s.maxkills);
    put("maxgeo", s.maxgeo);
    const auto word = [](VBool b) { return b ? QStringLiteral("True") : QStringLiteral("False"); };
    put("teamdamage", word(s.teamdamage));
    put("forcespawn", word(s.forcespawn));
    put("balance", word(s.balance));
    put("weaponstay", word(s.weaponstay));
    put("falldamage", word(s.falldamage));
    for (int i = 0; i < fields.maps.size(); ++i)
        put("map" + QString::number(i), fields.maps[i]);
    put("mapcount", QString::number(fields.maps.size()));
    put("default", "1");
    put("Mod", fields.mod);
    for (int i = 0; i < fields.messages.size(); ++i)
        put("Text" + QString::number(i), fields.messages[i]);
    put("MessageOn", fields.messageOn ? "1" : "0");
}

int StoredCount(SettingsStore& store, const QString& app, const QString& section,
                const QString& countKey, const QString& prefix, int first) {
    const int count = ReadNumber(store.GetSetting(app, section, countKey)).value_or(0);
    int highest = first - 1;
    for (const QString& key : store.KeyNames(app, section)) {
        if (!key.startsWith(prefix, Qt::CaseInsensitive))
            continue;
        const QStringView digits = QStringView(key).mid(prefix.size());
        bool ok = !digits.isEmpty() && std::all_of(digits.begin(), digits.end(),
                                                   [](QChar c) { return c >= u'0' && c <= u'9'; });
        const int index = ok ? digits.toInt(&ok) : 0;
        if (ok)
            highest = std::max(highest, index);
    }
    return std::clamp(count, 0, highest - first + 1);
}

std::optional<int> ReadNumber(const QString& text) {
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    return ok ? std::optional<int>(value) : std::nullopt;
}

std::optional<bool> ReadBoolean(const QString& text) {
    if (text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    return std::nullopt;
}
