#include "ui/automation/AutoMessageHandlers.h"

#include "ui/Hostwarden.h"
#include "ui/server/LaunchHandlers.h"
#include "ui_Hostwarden.h"

bool MainWindowMessageHost::MessageChecked() {
    return w_.ui->CHKMessage->isChecked();
}

bool MainWindowMessageHost::RandomChecked() {
    return w_.ui->CHKRand->isChecked();
}

bool MainWindowMessageHost::ServRecChecked() {
    return w_.ui->CHKServRec->isChecked();
}

QString MainWindowMessageHost::MessageText(int index) {
    return w_.TXTMess.at(index)->text();
}

void MainWindowMessageHost::SetCountCaption(const QString& caption) {
    w_.ui->LBLCount->setText(caption);
}

void MainWindowMessageHost::EnableAddsTimer(bool enabled) {
    if (enabled)
        w_.TMRAdds.start();
    else
        w_.TMRAdds.stop();
}

void MainWindowMessageHost::EnableSendTimer(bool enabled) {
    if (enabled)
        w_.TMRSend.start();
    else
        w_.TMRSend.stop();
}

void MainWindowMessageHost::EnableServRec(bool enabled) {
    w_.ui->CHKServRec->setEnabled(enabled);
}

void MainWindowMessageHost::UncheckServRec() {
    w_.ui->CHKServRec->setChecked(false);
}

void MainWindowMessageHost::Launch() {
    CMDLaunch_Click(w_);
}

int MainWindowMessageHost::TypistIntervalMs() {
    return w_.TMRSend.interval();
}

int MessageSecondMs() {
    bool ok = false;
    const int ms = qEnvironmentVariableIntValue("HOSTWARDEN_TEST_SECOND_MS", &ok);
    return ok && ms > 0 ? ms : 1000;
}
