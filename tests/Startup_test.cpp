// The program's start: the Setup window first, then the main window's load with the
// configuration DEFAULT and the operator's start-up preferences.
#include "MainWindow.h"
#include "Texts.h"

#include "ui/Setup.h"
#include "ui/server/SetupHandlers.h"
#include "ui_Setup.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

// A title bar but no close box: the operator leaves through the window's own buttons.
void ExpectNoCloseBox(const QWidget* window) {
    const Qt::WindowFlags flags = window->windowFlags();
    EXPECT_TRUE((flags & Qt::CustomizeWindowHint) && !(flags & Qt::WindowCloseButtonHint))
        << window->objectName().toStdString();
}

} // namespace

// The warning's Cancel, a plain first run and a later run with the operator's values are the
// first-run journey's; here a stored directory, older defaults, and Setup's Cancel.
TEST(Setup, FirstRunStoresFreshDefaultsOnOKAndEndsOnCancel) {
    const struct {
        const char* what;
        QString stored;              // "section/key=value;..." over the defaults of a later run
        const char* button;          // clicked in the Setup window
        QString gameDir, maxplayers; // no maxplayers: the program ends, storing nothing
    } rows[] = {
        {"later run without a directory", "Startup/HasRunSetup=1", nullptr, "", "16"},
        {"first run with a directory and older defaults",
         "Startup/RFLocation=/games/rf/;Default/maxplayers=4;ConfName/ConfCount=3", "CMDOK",
         "/games/rf/", "16"},
        {"cancel in the window", "Startup/RFLocation=/games/rf/", "CMDCancel", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        MainWindow r;
        if (!row.button)
            CreateDefaultConfig(r.t.store, kAppName);
        r.Seed(row.stored);
        const int writes = r.t.store.writes;
        auto* setup = new ::Setup(r.app, r.forms, r.t.services);
        r.forms.Setup = setup;
        Setup_Form_Load(*setup);
        EXPECT_EQ(r.t.messages.shown.size(), row.button ? 1 : 0) << "the backup warning";
        if (row.button) {
            EXPECT_EQ(setup->ui->TXTRFLocate->text(), "/games/rf/");
            EXPECT_TRUE(setup->ui->CMDOK->isEnabled()) << "enabled by a directory";
            ExpectNoCloseBox(setup);
            EXPECT_EQ(r.forms.MainWindow, nullptr) << "Setup waits for the operator";
            setup->show();
            const int commits = r.t.store.commits;
            QTest::mouseClick(setup->findChild<QPushButton*>(row.button), Qt::LeftButton);
            EXPECT_EQ(r.t.store.commits - commits, QString(row.button) == "CMDOK") << "at once";
        }
        const std::unique_ptr<QWidget> setupGone(setup), main(r.forms.MainWindow);
        EXPECT_EQ(r.t.end.ended, row.maxplayers.isEmpty() ? 1 : 0);
        if (row.maxplayers.isEmpty()) {
            EXPECT_EQ(r.t.store.writes, writes);
            EXPECT_FALSE(main);
            continue;
        }
        EXPECT_EQ(r.app.GameDir, row.gameDir);
        EXPECT_EQ(r.NotHeld("Startup/HasRunSetup=1;Startup/RFLocation=" + row.gameDir +
                            ";ConfName/ConfCount=1;ConfName/Conf1=DEFAULT;Default/maxplayers=" +
                            row.maxplayers),
                  "");
        EXPECT_EQ(r.forms.Setup, nullptr);
        EXPECT_FALSE(setup->isVisible());
        ASSERT_TRUE(main);
        EXPECT_TRUE(main->isVisible());
        ExpectNoCloseBox(main.get());
    }
}

// Whatever the preferences, DEFAULT is loaded into every control and nothing runs yet.
TEST(Startup, LoadsDefaultAndRestoresThePreferencesAlongTheirChain) {
    const struct {
        const char* what;
        QString startup; // "key=value;..." seeded under Startup
        int textRate, messageRate;
        QString checked; // boxes that end up checked
        QString portText;
    } rows[] = {
        // clang-format off
        {"no Startup values", "", 110, 3, "", ""},
        {"LanOnly alone: the chain stops at ServRec", "LanOnly=1", 110, 3, "", ""},
        {"whole chain, the port cleaned and stored again",
         "ServRec=1;lanonly=1;Port=1;PortNum=12a34", 110, 3, "ServRec LanOnly Port", "1234"},
        {"Port missing: PortNum is not restored", "ServRec=0;LanOnly=1;PortNum=7755", 110, 3,
         "LanOnly", ""},
        {"other values leave a box unchecked, the chain goes on",
         "ServRec=2;LanOnly=yes;Port=1;PortNum=", 110, 3, "Port", ""},
        {"rates", "TextRate=50;MsgRate=10", 50, 10, "", ""},
        {"rates read as the dialogs' ranges allow", "TextRate=5;MsgRate=fast", 10, 3, "", ""},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        MainWindow m;
        m.SeedFirstRun();
        m.Seed(row.startup, "Startup");
        auto& ui = m.Load().ui;
        const bool port = row.checked.contains("Port");
        EXPECT_EQ(std::pair(m.w->TextRate(), int(m.app.MessageRate)),
                  std::pair(row.textRate, row.messageRate));
        EXPECT_EQ(ui->CHKServRec->isChecked(), row.checked.contains("ServRec"));
        EXPECT_EQ(ui->CHKGameTracker->isChecked(), row.checked.contains("LanOnly"));
        EXPECT_EQ(ui->CHKPort->isChecked(), port);
        EXPECT_EQ(ui->TXTPort->isEnabled(), port);
        EXPECT_EQ(ui->TXTPort->text(), row.portText);
        EXPECT_TRUE(!port || m.t.Get("Startup", "PortNum") == row.portText);
        // The worked example of the options file is what a first run shows.
        EXPECT_EQ(m.Text().toLatin1(), texts::kFirstRunOptions);
        EXPECT_EQ(m.app.CurrentConf, "DEFAULT");
        EXPECT_EQ(m.app.Saved, "yes");
        EXPECT_FALSE(m.timer("TMRAdds")->isActive() || m.timer("TMRSend")->isActive());
    }
    MainWindow m;
    auto& ui = m.Start().ui();
    QStringList lists;
    for (QComboBox* list : {ui.MaxPlayers, ui.MaxTime, ui.MaxKills, ui.MaxCaps, ui.MaxGeo,
                            ui.TeamDamage, ui.FallDamage, ui.WeaponStay, ui.ForceSpawn, ui.Balance})
        lists << QString("%1..%2 %3")
                     .arg(list->itemText(0), list->itemText(list->count() - 1))
                     .arg(list->count());
    EXPECT_EQ(lists.join(", "), "2..32 31, 5..60 56, 1..100 100, 1..25 25, 0..128 129, "
                                "True..False 2, True..False 2, True..False 2, True..False 2, "
                                "True..False 2");
    EXPECT_EQ(QStringList({ui.LSTConfig->currentText(), QString::number(ui.LSTConfig->count()),
                           ui.TXTConfName->text(), ui.TXTMod->text(), ui.MCS->text()}),
              QStringList({"DEFAULT", "1", "Default", "None", "0 Maps"}));
}

TEST(LaunchSwitches, ClicksAndTypedPortsAreStored) {
    MainWindow m;
    auto& ui = m.Start().ui();
    for (QCheckBox* box : {ui.CHKGameTracker, ui.CHKServRec, ui.CHKPort})
        box->setChecked(true);
    EXPECT_EQ(m.NotHeld("Startup/lanonly=1;Startup/ServRec=1;Startup/Port=1"), "");
    EXPECT_TRUE(ui.TXTPort->isEnabled());
    // Only digits and the point stay, the cursor at the end, however long the number.
    const QString digits(320, u'7');
    for (const auto& [typed, kept] :
         QList<QPair<QString, QString>>{{"1234", "1234"},
                                        {"12a34", "1234"},
                                        {"12.5", "12.5"},
                                        {"abc", ""},
                                        {"7 7", "77"},
                                        {digits + "x" + digits, digits + digits}}) {
        ui.TXTPort->setText(typed);
        EXPECT_EQ(ui.TXTPort->text(), kept) << typed.toStdString();
        EXPECT_EQ(ui.TXTPort->cursorPosition(), kept.size()) << typed.toStdString();
        EXPECT_EQ(m.t.Get("Startup", "PortNum"), kept) << typed.toStdString();
    }
    ui.CHKPort->setChecked(false);
    EXPECT_EQ(m.t.Get("Startup", "Port"), "0");
    EXPECT_FALSE(ui.TXTPort->isEnabled());
}
