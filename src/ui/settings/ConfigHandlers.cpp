#include "ui/settings/ConfigHandlers.h"

#include "platform/Beeper.h"
#include "platform/MessageBoxes.h"
#include "platform/Services.h"
#include "platform/SettingsStore.h"
#include "settings/ServerConfig.h"
#include "ui/Hostwarden.h"
#include "ui/options/OptionsHandlers.h"
#include "ui_Hostwarden.h"

namespace {

QString Get(Hostwarden& w, const QString& key) {
    return w.services.store.GetSetting(w.app.AppName, w.app.CurrentConf, key);
}

// Selects the entry showing `stored` in a list of consecutive numbers starting at
// `first`. A value that is not a number of the list selects the default instead.
void SelectNumber(QComboBox* list, const QString& stored, int first, int fallback) {
    const std::optional<int> number = ReadNumber(stored);
    int index = number ? *number - first : -1;
    if (index < 0 || index >= list->count())
        index = fallback - first;
    list->setCurrentIndex(index);
}

// Rule switches list "True" at position 0 and "False" at position 1.
void SelectSwitch(QComboBox* list, const QString& stored, bool fallback) {
    list->setCurrentIndex(ReadBoolean(stored).value_or(fallback) ? 0 : 1);
}

} // namespace

void FillConfigList(Hostwarden& w) {
    QComboBox* list = w.ui->LSTConfig;
    {
        // Filling selects nothing; only a selection runs LSTConfig_Click.
        const QSignalBlocker quiet(list);
        list->clear();
        const int count =
            StoredCount(w.services.store, w.app.AppName, "ConfName", "ConfCount", "Conf", 1);
        for (int i = 1; i <= count; ++i)
            list->addItem(w.services.store.GetSetting(w.app.AppName, "ConfName",
                                                      "Conf" + QString::number(i)));
        list->setCurrentIndex(-1);
        list->setEditText(QString());
    }
    LoadConfig(w);
}

void LoadConfig(Hostwarden& w) {
    auto& ui = *w.ui;
    if (Get(w, "default") != QLatin1String("1"))
        return;
    ui.LSTMaps->clear();
    ui.TXTSTat->clear();

    const QString gametype = Get(w, "gametype");
    if (gametype == QLatin1String("CTF"))
        ui.OPTCTF->setChecked(true);
    else if (gametype == QLatin1String("DM"))
        ui.OPTDM->setChecked(true);
    else if (gametype == QLatin1String("TeamDM"))
        ui.OPTTDM->setChecked(true);

    ui.TXTServName->setText(Get(w, "servname"));
    ui.TXTConfName->setText(Get(w, "name"));
    SelectNumber(ui.MaxPlayers, Get(w, "maxplayers"), 2, ConfigDefaults::maxplayers);
    ui.TXTPassword->setText(Get(w, "password"));
    ui.TXTRconPass->setText(Get(w, "rconpass"));
    ui.TXTMod->setText(Get(w, "Mod"));
    if (ui.TXTMod->text().isEmpty())
        ui.TXTMod->setText(QStringLiteral("None"));
    SelectNumber(ui.MaxTime, Get(w, "maxtime"), 5, ConfigDefaults::maxtime);
    SelectNumber(ui.MaxCaps, Get(w, "maxcaps"), 1, ConfigDefaults::maxcaps);
    SelectNumber(ui.MaxKills, Get(w, "maxkills"), 1, ConfigDefaults::maxkills);
    SelectNumber(ui.MaxGeo, Get(w, "maxgeo"), 0, ConfigDefaults::maxgeo);
    for (int i = 0; i < int(w.TXTMess.size()); ++i)
        w.TXTMess[i]->setText(Get(w, "text" + QString::number(i)));

    SelectSwitch(ui.TeamDamage, Get(w, "teamdamage"), ConfigDefaults::teamdamage);
    SelectSwitch(ui.ForceSpawn, Get(w, "forcespawn"), ConfigDefaults::forcespawn);
    SelectSwitch(ui.Balance, Get(w, "balance"), ConfigDefaults::balance);
    SelectSwitch(ui.WeaponStay, Get(w, "weaponstay"), ConfigDefaults::weaponstay);
    SelectSwitch(ui.FallDamage, Get(w, "falldamage"), ConfigDefaults::falldamage);

    // A missing map key loads as an empty entry; a count beyond the last stored key
    // stops there.
    const int mapcount = StoredCount(w.services.store, w.app.AppName, w.app.CurrentConf,
                                     QStringLiteral("mapcount"), QStringLiteral("map"), 0);
    for (int i = 0; i < mapcount; ++i)
        ui.LSTMaps->addItem(Get(w, "map" + QString::number(i)));
    // Show the loaded texts from their start, not scrolled to their end.
    for (QLineEdit* box : {ui.TXTServName, ui.TXTConfName, ui.TXTPassword, ui.TXTRconPass})
        box->setCursorPosition(0);
    for (QLineEdit* box : w.TXTMess)
        box->setCursorPosition(0);
    BuildOptionsText(w);
    UpdateMapCount(w);
}

void SaveConfig(Hostwarden& w) {
    WindowFields fields{MapList(w), w.ui->TXTMod->text(), {}, w.ui->CHKMessage->isChecked()};
    for (const QLineEdit* box : w.TXTMess)
        fields.messages << box->text();
    SaveConfigSection(w.services.store, w.app, fields);
    w.ui->TXTConfName->setText(w.app.CurrentConf);
    w.app.Saved = QStringLiteral("yes");
}

void LSTConfig_Click(Hostwarden& w) {
    w.app.CurrentConf = w.ui->LSTConfig->currentText();
}

void CMDLoad_Click(Hostwarden& w) {
    LoadConfig(w);
}

void CMDSave_Click(Hostwarden& w) {
    const QString conf = w.app.CurrentConf;
    const MsgAnswer answer = w.services.messages.Show(
        {QStringLiteral("Are you sure you want to modify ") + conf + QStringLiteral("?"),
         QStringLiteral("Save Configuration"), MsgButtons::YesNo, MsgIcon::Critical,
         MsgDefault::Second});
    if (answer != MsgAnswer::Yes)
        return;
    w.services.beeper.Beep();
    SaveConfig(w);
    w.services.messages.Show({w.app.CurrentConf + QStringLiteral(" Configuration Saved."),
                              QStringLiteral("Configuration Saved"), MsgButtons::OK,
                              MsgIcon::Information, MsgDefault::First});
    w.app.Saved = QStringLiteral("yes");
}

void TXTConfName_Change(Hostwarden& w) {
    w.app.name = w.ui->TXTConfName->text();
    BuildOptionsText(w);
    w.app.Saved = QStringLiteral("no");
}

int TXTConfName_KeyPress(Hostwarden&, int keyAscii) {
    return keyAscii == 32 ? 0 : keyAscii;
}
