#include "ui/options/OptionsHandlers.h"

#include "options/OptionsBackup.h"
#include "options/OptionsText.h"
#include "platform/MessageBoxes.h"
#include "platform/Services.h"
#include "settings/IniSettingsStore.h"
#include "ui/Hostwarden.h"
#include "ui_Hostwarden.h"

QStringList MapList(const Hostwarden& w) {
    QStringList maps;
    for (int i = 0; i < w.ui->LSTMaps->count(); ++i)
        maps << w.ui->LSTMaps->item(i)->text();
    return maps;
}

QString ShownOptionsText(const Hostwarden& w) {
    // The raw text keeps no-break spaces and tells paragraph from line breaks.
    return w.ui->TXTSTat->document()->toRawText();
}

QString OptionsText(const Hostwarden& w) {
    return w.optionsText.Text();
}

void BuildOptionsText(Hostwarden& w) {
    const QString text = ComposeOptionsText(w.app, MapList(w));
    w.ui->TXTSTat->clear();
    w.ui->TXTSTat->insertPlainText(OptionsTextModel::ToDisplay(text));
    w.optionsText.Built(text);
    // The operator reads the file from its first line.
    w.ui->TXTSTat->moveCursor(QTextCursor::Start);
}

bool Write_File(Hostwarden& w) {
    QString error;
    const QString record = IniSettingsStore::DefaultFolder() + QStringLiteral("/options-written");
    if (BackUpOptionsFile(w.app.GameDir, record, &error) &&
        WriteOptionsFile(w.app.GameDir, OptionsText(w), &error)) {
        RecordOptionsWritten(w.app.GameDir, record);
        return true;
    }
    w.services.messages.Show({error + QStringLiteral("\r\nThe server was not started."),
                              QStringLiteral("Options File Error"), MsgButtons::OK,
                              MsgIcon::Critical, MsgDefault::First});
    return false;
}

void UpdateMapCount(Hostwarden& w) {
    w.ui->MCS->setText(QString::number(w.ui->LSTMaps->count()) + QStringLiteral(" Maps"));
}
