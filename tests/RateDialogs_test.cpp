#include "MainWindow.h"

#include <QPointer>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

TEST(RateDialogs, OpenAtTheRateInEffectStoreOnOKAndChangeNothingOnCancel) {
    const struct {
        const char* opener;
        QWidget* WindowRegistry::*dialog;
        const char *ok, *cancel, *suffix, *key;
        Qt::Key arrow;
        int start, stepped, chosen;
        int (*inEffect)(MainWindow&); // after OK: the typist's rate changes, the message rate not
        int afterOK;
    } rows[] = {
        {"CMDTextRate", &WindowRegistry::Text_Rate, "Command1", "Command2",
         " ms between characters", "TextRate", Qt::Key_Left, 110, 200, 50,
         [](MainWindow& m) { return m.w->TextRate(); }, 50},
        {"CMDMsgRate", &WindowRegistry::MsgRate, "CMDOK", "CMDCancel", " minutes between messages.",
         "MsgRate", Qt::Key_Right, 3, 7, 10, [](MainWindow& m) { return int(m.app.MessageRate); },
         3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.opener);
        MainWindow m;
        m.Start().w->show();
        m.timer("TMRAdds")->start();
        QSlider* slider = nullptr;
        QLabel* label = nullptr;
        // Opens over a disabled main window, with a title bar but no close box, at the rate
        // in effect.
        const auto open = [&] {
            m.w->findChild<QPushButton*>(row.opener)->click();
            QWidget* d = m.forms.*row.dialog;
            ASSERT_TRUE(d && d->isVisible());
            EXPECT_FALSE(m.w->isEnabled());
            EXPECT_EQ(d->windowFlags() & (Qt::CustomizeWindowHint | Qt::WindowCloseButtonHint),
                      Qt::WindowFlags(Qt::CustomizeWindowHint));
            slider = d->findChild<QSlider*>();
            EXPECT_EQ(slider->value(), row.inEffect(m));
            label = d->findChild<QLabel*>("RateText");
            EXPECT_EQ(label->text(), QString::number(slider->value()) + row.suffix);
        };
        // Either button enables the main window again and unloads the dialog.
        const auto close = [&](const char* button) {
            QPointer<QWidget> d = m.forms.*row.dialog;
            d->findChild<QPushButton*>(button)->click();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            EXPECT_TRUE(m.w->isEnabled() && !(m.forms.*row.dialog) && d.isNull());
        };
        ASSERT_NO_FATAL_FAILURE(open());
        QTest::keyClick(slider, row.arrow); // small step
        QTest::keyClick(slider, Qt::Key_PageUp);
        EXPECT_EQ(slider->value(), row.stepped);
        slider->setValue(row.chosen);
        EXPECT_EQ(label->text(), QString::number(row.chosen) + row.suffix);
        close(row.cancel);
        EXPECT_TRUE(m.timer("TMRAdds")->isActive()) << "the countdown went on meanwhile";
        EXPECT_EQ(row.inEffect(m), row.start);
        EXPECT_EQ(m.t.Get("Startup", row.key), "");

        ASSERT_NO_FATAL_FAILURE(open());
        slider->setValue(row.chosen);
        close(row.ok);
        EXPECT_EQ(m.t.Get("Startup", row.key), QString::number(row.chosen));
        EXPECT_EQ(row.inEffect(m), row.afterOK);
        ASSERT_NO_FATAL_FAILURE(open()); // afresh, from the rate now in effect
        close(row.cancel);
        // A countdown started now runs at the message rate the program started with.
        m.ui().CHKMessage->setChecked(true);
        m.w->ServerLaunched(1);
        emit m.timer("TMRAdds")->timeout({});
        EXPECT_EQ(m.ui().LBLCount->text(), "Next Auto Message due in 179 seconds.");
    }
}
