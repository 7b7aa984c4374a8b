#include "MainWindow.h"

#include "ui/RateDialogs.h"
#include "ui/automation/RateHandlers.h"
#include "ui_MsgRate.h"
#include "ui_Text_Rate.h"

#include <QPointer>
#include <QTest>

#include <gtest/gtest.h>

namespace {

struct Rates : MainWindow {
    Rates() {
        SeedFirstRun();
        Load();
        w->show();
    }
    Text_Rate* textRate() { return static_cast<Text_Rate*>(forms.Text_Rate); }
    MsgRate* msgRate() { return static_cast<MsgRate*>(forms.MsgRate); }
};

void Unloaded(QPointer<QWidget> dialog) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(dialog.isNull());
}

// Opened over a disabled main window, with a title bar but no close box.
void OpenModal(Rates& m, QWidget* dialog) {
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(m.w->isEnabled());
    const Qt::WindowFlags flags = dialog->windowFlags();
    EXPECT_TRUE((flags & Qt::CustomizeWindowHint) && !(flags & Qt::WindowCloseButtonHint));
}

} // namespace

TEST(TextRateDialog, OpensAtTheTypistRateAndStoresItOnOK) {
    Rates m;
    m.ui().CMDTextRate->click();
    Text_Rate* d = m.textRate();
    ASSERT_NO_FATAL_FAILURE(OpenModal(m, d));
    EXPECT_EQ(d->ui->SlideTextRate->value(), 110);
    EXPECT_EQ(d->ui->RateText->text(), "110 ms between characters");

    QTest::keyClick(d->ui->SlideTextRate, Qt::Key_PageUp); // large step
    QTest::keyClick(d->ui->SlideTextRate, Qt::Key_Left);   // small step
    EXPECT_EQ(d->ui->SlideTextRate->value(), 200);
    d->ui->SlideTextRate->setValue(50);
    EXPECT_EQ(d->ui->RateText->text(), "50 ms between characters");
    QPointer<QWidget> dialog = d;
    d->ui->Command1->click();
    EXPECT_EQ(m.w->TextRate(), 50);
    EXPECT_EQ(m.t.Get("Startup", "TextRate"), "50");
    EXPECT_TRUE(m.w->isEnabled());
    EXPECT_EQ(m.forms.Text_Rate, nullptr);
    Unloaded(dialog);

    // Each opening starts afresh from the typist's rate.
    m.ui().CMDTextRate->click();
    EXPECT_EQ(m.textRate()->ui->SlideTextRate->value(), 50);
}

TEST(MsgRateDialog, StoresOnOKButShowsTheRunningRate) {
    Rates m;
    m.ui().CMDMsgRate->click();
    MsgRate* d = m.msgRate();
    ASSERT_NO_FATAL_FAILURE(OpenModal(m, d));
    EXPECT_EQ(d->ui->SLDMsgRate->value(), 3);
    EXPECT_EQ(d->ui->RateText->text(), "3 minutes between messages.");
    QTest::keyClick(d->ui->SLDMsgRate, Qt::Key_PageUp);
    QTest::keyClick(d->ui->SLDMsgRate, Qt::Key_Right);
    EXPECT_EQ(d->ui->SLDMsgRate->value(), 7);
    d->ui->SLDMsgRate->setValue(10);
    d->ui->CMDOK->click();
    EXPECT_EQ(m.t.Get("Startup", "MsgRate"), "10");
    EXPECT_EQ(m.app.MessageRate, 3);
    EXPECT_TRUE(m.w->isEnabled());
    // The running countdown goes on at the rate it started with.
    m.ui().CHKMessage->setChecked(true);
    m.w->ServerLaunched(1);
    emit m.timer("TMRAdds")->timeout({});
    EXPECT_EQ(m.ui().LBLCount->text(), "Next Auto Message due in 179 seconds.");

    m.app.MessageRate = 12;
    m.ui().CMDMsgRate->click();
    EXPECT_EQ(m.msgRate()->ui->SLDMsgRate->value(), 12);
    EXPECT_EQ(m.msgRate()->ui->RateText->text(), "12 minutes between messages.");
}

TEST(RateDialogs, CancelChangesNothing) {
    Rates m;
    m.timer("TMRAdds")->start();
    m.ui().CMDTextRate->click();
    EXPECT_TRUE(m.timer("TMRAdds")->isActive()); // the countdown goes on meanwhile
    m.textRate()->ui->SlideTextRate->setValue(30);
    QPointer<QWidget> text = m.textRate();
    m.textRate()->ui->Command2->click();
    EXPECT_EQ(m.w->TextRate(), 110);
    EXPECT_TRUE(m.w->isEnabled());
    Unloaded(text);

    m.ui().CMDMsgRate->click();
    m.msgRate()->ui->SLDMsgRate->setValue(15);
    m.msgRate()->ui->CMDCancel->click();
    EXPECT_TRUE(m.w->isEnabled());
    EXPECT_EQ(m.t.Get("Startup", "TextRate"), "");
    EXPECT_EQ(m.t.Get("Startup", "MsgRate"), "");
    EXPECT_EQ(m.forms.MsgRate, nullptr);
}
