#include "MainWindow.h"

#include <QPointer>
#include <QSlider>

#include <gtest/gtest.h>

// The typist's rate changes at once, the message rate with the next start. The forms as
// opened are the forms test's.
TEST(RateDialogs, OpenAtTheRateInEffectStoreOnOKAndChangeNothingOnCancel) {
    const struct {
        const char* opener;
        QWidget* WindowRegistry::*dialog;
        const char *ok, *cancel, *suffix, *key;
        int start, chosen;
        int (*inEffect)(MainWindow&);
        int afterOK;
    } rows[] = {
        {"CMDTextRate", &WindowRegistry::Text_Rate, "Command1", "Command2",
         " ms between characters", "TextRate", 110, 50,
         [](MainWindow& m) { return m.w->TextRate(); }, 50},
        {"CMDMsgRate", &WindowRegistry::MsgRate, "CMDOK", "CMDCancel", " minutes between messages.",
         "MsgRate", 3, 10, [](MainWindow& m) { return int(m.app.MessageRate); }, 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.opener);
        MainWindow m;
        m.Start().w->show();
        m.timer("TMRAdds")->start();
        // Opens the dialog afresh, picks `value` and closes it with `button`.
        const auto choose = [&](int value, const char* button) {
            m.w->findChild<QPushButton*>(row.opener)->click();
            QPointer<QWidget> d = m.forms.*row.dialog;
            ASSERT_TRUE(d && !m.w->isEnabled());
            auto* slider = d->findChild<QSlider*>();
            EXPECT_EQ(slider->value(), row.inEffect(m));
            slider->setValue(value);
            EXPECT_EQ(d->findChild<QLabel*>("RateText")->text(),
                      QString::number(value) + row.suffix);
            d->findChild<QPushButton*>(button)->click();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            EXPECT_TRUE(m.w->isEnabled() && !(m.forms.*row.dialog) && d.isNull());
        };
        ASSERT_NO_FATAL_FAILURE(choose(row.chosen, row.cancel));
        EXPECT_TRUE(m.timer("TMRAdds")->isActive()) << "the countdown went on meanwhile";
        EXPECT_EQ(std::pair(row.inEffect(m), m.t.Get("Startup", row.key)),
                  std::pair(row.start, QString()));
        ASSERT_NO_FATAL_FAILURE(choose(row.chosen, row.ok));
        EXPECT_EQ(std::pair(row.inEffect(m), m.t.Get("Startup", row.key)),
                  std::pair(row.afterOK, QString::number(row.chosen)));
        ASSERT_NO_FATAL_FAILURE(choose(row.afterOK, row.cancel)); // from the rate now in effect
        // A countdown started now runs at the message rate the program started with.
        m.ui().CHKMessage->setChecked(true);
        m.w->ServerLaunched(1);
        emit m.timer("TMRAdds")->timeout({});
        EXPECT_EQ(m.ui().LBLCount->text(), "Next Auto Message due in 179 seconds.");
    }
}
