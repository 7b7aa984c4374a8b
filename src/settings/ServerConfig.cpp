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
    WriteDefaults(store, app, "Default", "$Me's Dedicated CTF Running Hostwarden 2.0", "Default",
                  true);
    store.SaveSetting(app, "ConfName", "ConfCount", "1");
    store.SaveSetting(app, "ConfName", "Conf1", "DEFAULT");
}

void CreateNewConfig(SettingsStore& store, AppState& state) {
    const QString& section = state.CurrentConf;
    if (store.GetSetting(state.AppName, section, "default") == "1")
        store.DeleteSection(state.AppName, section);
    WriteDefaults(store, state.AppName, section, "$Me's Dedicated CTF running Hostwarden 2.0",
                  section, false);
    state.Saved = "yes";
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

int NumberedCount(const QStringList& keys, const QString& prefix, int count) {
    int highest = -1;
    for (const QString& key : keys) {
        if (!key.startsWith(prefix, Qt::CaseInsensitive))
            continue;
        const QStringView digits = QStringView(key).mid(prefix.size());
        bool ok = !digits.isEmpty() && digits.front().isDigit();
        const int index = ok ? digits.toInt(&ok) : -1;
        if (ok && QString::number(index) == digits)
            highest = std::max(highest, index);
    }
    return std::clamp(highest + 1, 0, std::max(count, 0));
}
