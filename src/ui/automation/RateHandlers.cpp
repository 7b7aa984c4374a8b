#include "ui/automation/RateHandlers.h"

#include "platform/Services.h"
#include "platform/SettingsStore.h"
#include "server/AppState.h"
#include "ui/DialogProtocol.h"
#include "ui/Hostwarden.h"
#include "ui/RateDialogs.h"
#include "ui/WindowRegistry.h"
#include "ui_MsgRate.h"
#include "ui_Text_Rate.h"

namespace {

void SaveStartup(Hostwarden& w, const QString& key, int value) {
    w.services.store.SaveSetting(w.app.AppName, QStringLiteral("Startup"), key,
                                 QString::number(value));
}

} // namespace

void CMDTextRate_Click(Hostwarden& w) {
    auto* d = new Text_Rate(w);
    w.forms.Text_Rate = d;
    Text_Rate_Form_Load(*d);
    OpenDialog(&w, d, StartPosition::SystemDefault);
}

void Text_Rate_Form_Load(Text_Rate& d) {
    QSlider* slider = d.ui->SlideTextRate;
    slider->setMaximum(QStringLiteral("210").toInt());
    slider->setMinimum(QStringLiteral("10").toInt());
    slider->setValue(d.main.TextRate());
    SlideTextRate_Change(d);
}

void SlideTextRate_Change(Text_Rate& d) {
    d.ui->RateText->setText(QString::number(d.ui->SlideTextRate->value()) +
                            QStringLiteral(" ms between characters"));
}

void Text_Rate_Command1_Click(Text_Rate& d) {
    Hostwarden& w = d.main;
    const int rate = d.ui->SlideTextRate->value();
    w.SetTextRate(rate);
    SaveStartup(w, QStringLiteral("TextRate"), rate);
    CloseDialog(&w, w.forms.Text_Rate);
}

void Text_Rate_Command2_Click(Text_Rate& d) {
    CloseDialog(&d.main, d.main.forms.Text_Rate);
}

void CMDMsgRate_Click(Hostwarden& w) {
    auto* d = new MsgRate(w);
    w.forms.MsgRate = d;
    MsgRate_Form_Load(*d);
    OpenDialog(&w, d, StartPosition::SystemDefault);
}

void MsgRate_Form_Load(MsgRate& d) {
    QSlider* slider = d.ui->SLDMsgRate;
    slider->setMinimum(3);
    slider->setMaximum(15);
    SLDMsgRate_Change(d);
    slider->setValue(d.main.app.MessageRate);
}

void SLDMsgRate_Change(MsgRate& d) {
    d.ui->RateText->setText(QString::number(d.ui->SLDMsgRate->value()) +
                            QStringLiteral(" minutes between messages."));
}

void MsgRate_CMDOK_Click(MsgRate& d) {
    Hostwarden& w = d.main;
    SaveStartup(w, QStringLiteral("MsgRate"), d.ui->SLDMsgRate->value());
    CloseDialog(&w, w.forms.MsgRate);
}

void MsgRate_CMDCancel_Click(MsgRate& d) {
    CloseDialog(&d.main, d.main.forms.MsgRate);
}
