#include "ui/server/StartupHandlers.h"

#include "automation/Rates.h"
#include "platform/Services.h"
#include "platform/SettingsStore.h"
#include "ui/Hostwarden.h"
#include "ui/options/OptionsHandlers.h"
#include "ui/settings/ConfigHandlers.h"
#include "ui_Hostwarden.h"

#include <QRegularExpression>

namespace {

QString Startup(Hostwarden& w, const QString& key) {
    return w.services.store.GetSetting(w.app.AppName, QStringLiteral("Startup"), key);
}

void SaveStartup(Hostwarden& w, const QString& key, const QString& value) {
    w.services.store.SaveSetting(w.app.AppName, QStringLiteral("Startup"), key, value);
}

QString BoxState(const QAbstractButton* box) {
    return box->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
}

// Fills a drop-down without choosing an item; it keeps showing its initial text.
void FillList(QComboBox* list, const QStringList& items) {
    const QSignalBlocker quiet(list);
    const QString shown = list->currentText();
    list->clear();
    list->addItems(items);
    list->setCurrentIndex(-1);
    list->setEditText(shown);
}

QStringList Range(int first, int last) {
    QStringList items;
    for (int i = first; i <= last; ++i)
        items << QString::number(i);
    return items;
}

// Restores a check box from "0" or "1"; false when nothing is stored, which ends the
// chain of preferences.
bool RestoreBox(Hostwarden& w, const QString& key, QAbstractButton* box) {
    const QString stored = Startup(w, key);
    if (stored.isEmpty())
        return false;
    if (IsNumeric(stored)) {
        const double value = stored.trimmed().toDouble();
        if (value == 0)
            box->setChecked(false);
        else if (value == 1)
            box->setChecked(true);
    }
    return true;
}

} // namespace

void Hostwarden_Form_Load(Hostwarden& w) {
    auto& ui = *w.ui;
    w.app.MessageRate = 3;
    ui.OPTCTF->setChecked(true);
    w.app.ServerExe = QStringLiteral("RF.EXE");
    for (QComboBox* list : {ui.TeamDamage, ui.FallDamage, ui.WeaponStay, ui.ForceSpawn, ui.Balance})
        FillList(list, {QStringLiteral("True"), QStringLiteral("False")});
    FillList(ui.MaxPlayers, Range(2, 32));
    FillList(ui.MaxTime, Range(5, 60));
    FillList(ui.MaxKills, Range(1, 100));
    FillList(ui.MaxCaps, Range(1, 25));
    FillList(ui.MaxGeo, Range(0, 128));

    w.app.CurrentConf = QStringLiteral("DEFAULT");
    FillConfigList(w);
    ui.LSTConfig->setCurrentIndex(0);

    const QString textRate = Startup(w, QStringLiteral("TextRate"));
    w.SetTextRate(textRate.isEmpty() ? kDefaultTextRate : ClampTextRate(textRate));
    const QString msgRate = Startup(w, QStringLiteral("MsgRate"));
    w.app.MessageRate = msgRate.isEmpty() ? kDefaultMessageRate : ClampMessageRate(msgRate);

    if (RestoreBox(w, QStringLiteral("ServRec"), ui.CHKServRec) &&
        RestoreBox(w, QStringLiteral("LanOnly"), ui.CHKGameTracker) &&
        RestoreBox(w, QStringLiteral("Port"), ui.CHKPort))
        ui.TXTPort->setText(Startup(w, QStringLiteral("PortNum")));

    BuildOptionsText(w);
    w.app.Saved = QStringLiteral("yes");
}

void CHKGameTracker_Click(Hostwarden& w) {
    SaveStartup(w, QStringLiteral("lanonly"), BoxState(w.ui->CHKGameTracker));
}

void CHKServRec_Click(Hostwarden& w) {
    SaveStartup(w, QStringLiteral("ServRec"), BoxState(w.ui->CHKServRec));
}

void CHKPort_Click(Hostwarden& w) {
    w.ui->TXTPort->setEnabled(w.ui->CHKPort->isChecked());
    SaveStartup(w, QStringLiteral("Port"), BoxState(w.ui->CHKPort));
}

void TXTPort_Change(Hostwarden& w) {
    QLineEdit* port = w.ui->TXTPort;
    const QString text = port->text();
    if (!IsNumeric(text)) {
        QString digits;
        for (const QChar ch : text)
            if (ch >= QLatin1Char('0') && ch <= QLatin1Char('9'))
                digits += ch;
        // Each change below runs this handler again, and each of those runs ends
        // with the text numeric (or empty) and stored.
        port->clear();
        for (const QChar ch : digits)
            port->setText(port->text() + ch);
        port->setCursorPosition(port->text().size());
    }
    SaveStartup(w, QStringLiteral("PortNum"), port->text());
}

bool IsNumeric(const QString& text) {
    // Judged on the text alone: a conversion would overflow on a long run of digits and
    // fail a text that is plainly a number.
    static const QRegularExpression number(
        QStringLiteral(R"(^[ \t]*[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?[ \t]*$)"));
    return number.match(text).hasMatch();
}
