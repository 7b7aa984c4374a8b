#include "ui/settings/ConfigFieldHandlers.h"

#include "platform/Beeper.h"
#include "platform/MessageBoxes.h"
#include "platform/Services.h"
#include "settings/ProjectInfo.h"
#include "ui/Hostwarden.h"
#include "ui/options/OptionsHandlers.h"
#include "ui_Hostwarden.h"

namespace {

void MarkChanged(Hostwarden& w) {
    w.app.Saved = QStringLiteral("no");
}

void GameType(Hostwarden& w, QRadioButton* clicked, const char* type, const char* servname) {
    if (!clicked->isChecked())
        return;
    // The exclusive group has already cleared the other two options.
    w.app.gametype = QLatin1String(type);
    const bool ctf = clicked == w.ui->OPTCTF;
    w.ui->MaxKills->setEnabled(!ctf);
    w.ui->MaxCaps->setEnabled(ctf);
    w.ui->LSTMaps->clear();
    w.ui->TXTServName->setText(QLatin1String(servname));
    BuildOptionsText(w);
    UpdateMapCount(w);
}

void Limit(Hostwarden& w, QComboBox* list, QString AppState::*field) {
    MarkChanged(w);
    w.app.*field = list->currentText();
    BuildOptionsText(w);
}

void Switch(Hostwarden& w, QComboBox* list, VBool AppState::*field) {
    MarkChanged(w);
    w.app.*field = list->currentText() == QLatin1String("True") ? kTrue : kFalse;
    BuildOptionsText(w);
}

void Text(Hostwarden& w, QLineEdit* box, QString AppState::*field) {
    MarkChanged(w);
    w.app.*field = box->text();
    BuildOptionsText(w);
}

} // namespace

void OPTCTF_Click(Hostwarden& w) {
    GameType(w, w.ui->OPTCTF, "CTF", "$ME's Dedicated CTF");
}
void OPTDM_Click(Hostwarden& w) {
    GameType(w, w.ui->OPTDM, "DM", "$ME's Dedicated DM");
}
void OPTTDM_Click(Hostwarden& w) {
    GameType(w, w.ui->OPTTDM, "TeamDM", "$ME's Dedicated TeamDM");
}

void MaxPlayers_Click(Hostwarden& w) {
    Limit(w, w.ui->MaxPlayers, &AppState::maxplayers);
}
void MaxTime_Click(Hostwarden& w) {
    Limit(w, w.ui->MaxTime, &AppState::maxtime);
}
void MaxKills_Click(Hostwarden& w) {
    Limit(w, w.ui->MaxKills, &AppState::maxkills);
}
void MaxCaps_Click(Hostwarden& w) {
    Limit(w, w.ui->MaxCaps, &AppState::maxcaps);
}
void MaxGeo_Click(Hostwarden& w) {
    Limit(w, w.ui->MaxGeo, &AppState::maxgeo);
}
void TeamDamage_Click(Hostwarden& w) {
    Switch(w, w.ui->TeamDamage, &AppState::teamdamage);
}
void FallDamage_Click(Hostwarden& w) {
    Switch(w, w.ui->FallDamage, &AppState::falldamage);
}
void WeaponStay_Click(Hostwarden& w) {
    Switch(w, w.ui->WeaponStay, &AppState::weaponstay);
}
void ForceSpawn_Click(Hostwarden& w) {
    Switch(w, w.ui->ForceSpawn, &AppState::forcespawn);
}
void Balance_Click(Hostwarden& w) {
    Switch(w, w.ui->Balance, &AppState::balance);
}

void TXTServName_Change(Hostwarden& w) {
    Text(w, w.ui->TXTServName, &AppState::servname);
}
void TXTPassword_Change(Hostwarden& w) {
    Text(w, w.ui->TXTPassword, &AppState::password);
}
void TXTRconPass_Change(Hostwarden& w) {
    Text(w, w.ui->TXTRconPass, &AppState::rconpass);
}
void TXTSTat_Change(Hostwarden& w) {
    w.optionsText.Edited(ShownOptionsText(w));
    MarkChanged(w);
}
void TXTMess_Change(Hostwarden& w) {
    MarkChanged(w);
}
void TXTMod_Change(Hostwarden& w) {
    MarkChanged(w);
}

void Image1_Click(Hostwarden& w) {
    w.services.messages.Show({QStringLiteral("Please visit ") + kProjectAddress +
                                  QStringLiteral(" for possible updates."),
                              kAppName, MsgButtons::OK, MsgIcon::None, MsgDefault::First});
    w.services.beeper.Beep();
}
