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

// Runs the program's entry over doubles: the Setup window loads first.
struct SetupRun : MainWindow {
    Setup* setup = nullptr;

    void Run() {
        setup = new Setup(app, forms, t.services);
        forms.Setup = setup;
        Setup_Form_Load(*setup);
    }
    ~SetupRun() {
        delete forms.MainWindow;
        delete setup; // closing leaves it to deleteLater, and no event loop runs here
    }
};

// A title bar but no close box: the operator leaves through the window's own buttons.
void ExpectNoCloseBox(const QWidget* window) {
    const Qt::WindowFlags flags = window->windowFlags();
    EXPECT_TRUE((flags & Qt::CustomizeWindowHint) && !(flags & Qt::WindowCloseButtonHint))
        << window->objectName().toStdString();
}

} // namespace

TEST(Setup, FirstRunWarnsAndWaitsForTheDirectoryLaterRunsGoStraightToTheMainWindow) {
    const MessageRequest warning{
        "Warning, it is highly recommended that you make a backup of dedicated_server.txt "
        "located in your redfaction game directory. This application will modify this file. "
        "Ckick Cancel to exit setup or click OK to continue",
        "Warning", MsgButtons::OKCancel, MsgIcon::None, MsgDefault::First};
    using enum MsgAnswer;
    const struct {
        const char* what;
        QString stored;              // "section/key=value;..." over the defaults of a later run
        MsgAnswer answer;            // to the warning
        const char* button;          // clicked in the Setup window
        QString gameDir, maxplayers; // no maxplayers: the program ends, storing nothing
    } rows[] = {
        // clang-format off
        {"later run", "Startup/HasRunSetup=1;Startup/RFLocation=/games/rf/;Default/maxplayers=12",
         OK, nullptr, "/games/rf/", "12"},
        {"later run without a directory", "Startup/HasRunSetup=1", OK, nullptr, "", "16"},
        {"first run with a directory and older defaults",
         "Startup/RFLocation=/games/rf/;Default/maxplayers=4;ConfName/ConfCount=3", OK, "CMDOK",
         "/games/rf/", "16"},
        {"first run from an empty store, as after a reset", "", OK, "CMDOK", "/games/rf/", "16"},
        {"cancel at the warning", "", Cancel, nullptr, "", ""},
        {"cancel in the window", "Startup/RFLocation=/games/rf/", OK, "CMDCancel", "", ""},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        SetupRun r;
        const bool firstRun = !row.stored.contains("HasRunSetup");
        if (!firstRun)
            CreateDefaultConfig(r.t.store, kAppName);
        for (const QString& entry : row.stored.split(';', Qt::SkipEmptyParts))
            r.t.Put(entry.section('/', 0, 0), entry.section('/', 1).section('=', 0, 0),
                    entry.section('=', 1));
        const int writes = r.t.store.writes;
        r.t.messages.answers = {row.answer};
        r.Run();
        EXPECT_EQ(r.t.messages.shown, firstRun ? QList{warning} : QList<MessageRequest>());
        if (row.button) {
            Ui::Setup& ui = *r.setup->ui;
            const bool stored = row.stored.contains("RFLocation");
            EXPECT_EQ(ui.TXTRFLocate->text(), stored ? "/games/rf/" : "");
            EXPECT_EQ(ui.CMDOK->isEnabled(), stored) << "enabled by a directory";
            ExpectNoCloseBox(r.setup);
            EXPECT_EQ(r.forms.MainWindow, nullptr) << "Setup waits for the operator";
            if (!stored) { // what Browse's OK does
                ui.TXTRFLocate->setText("/games/rf/");
                ui.CMDOK->setEnabled(true);
            }
            r.setup->show();
            const int commits = r.t.store.commits;
            QTest::mouseClick(r.setup->findChild<QPushButton*>(row.button), Qt::LeftButton);
            EXPECT_EQ(r.t.store.commits - commits, QString(row.button) == "CMDOK") << "at once";
        }
        const bool ends = row.maxplayers.isEmpty();
        EXPECT_EQ(r.t.end.ended, ends ? 1 : 0);
        if (ends) {
            EXPECT_EQ(r.t.store.writes, writes);
            EXPECT_EQ(r.forms.MainWindow, nullptr);
            continue;
        }
        EXPECT_EQ(r.app.GameDir, row.gameDir);
        EXPECT_EQ(QStringList({r.t.Get("Startup", "HasRunSetup"), r.t.Get("Startup", "RFLocation"),
                               r.t.Get("ConfName", "ConfCount"), r.t.Get("ConfName", "Conf1"),
                               r.t.Get("Default", "maxplayers")}),
                  QStringList({"1", row.gameDir, "1", "DEFAULT", row.maxplayers}));
        EXPECT_EQ(r.forms.Setup, nullptr);
        EXPECT_FALSE(r.setup->isVisible());
        ASSERT_NE(r.forms.MainWindow, nullptr);
        EXPECT_TRUE(r.forms.MainWindow->isVisible());
        ExpectNoCloseBox(r.forms.MainWindow);
    }
}

// Whatever the preferences, DEFAULT is loaded into every control and nothing runs yet.
TEST(Startup, LoadsDefaultAndRestoresThePreferencesAlongTheirChain) {
    const struct {
        const char* what;
        QString startup; // "key=value" pairs seeded under Startup
        int textRate, messageRate;
        QString checked; // boxes that end up checked
        QString portText;
    } rows[] = {
        // clang-format off
        {"no Startup values", "", 110, 3, "", ""},
        {"LanOnly alone: the chain stops at ServRec", "LanOnly=1", 110, 3, "", ""},
        {"whole chain, the port cleaned and stored again",
         "ServRec=1 lanonly=1 Port=1 PortNum=12a34", 110, 3, "ServRec LanOnly Port", "1234"},
        {"Port missing: PortNum is not restored", "ServRec=0 LanOnly=1 PortNum=7755", 110, 3,
         "LanOnly", ""},
        {"other values leave a box unchecked, the chain goes on",
         "ServRec=2 LanOnly=yes Port=1 PortNum=", 110, 3, "Port", ""},
        {"rates", "TextRate=50 MsgRate=10", 50, 10, "", ""},
        {"rates read as the dialogs' ranges allow", "TextRate=5 MsgRate=fast", 10, 3, "", ""},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        MainWindow m;
        m.SeedFirstRun();
        for (const QString& pair : row.startup.split(' ', Qt::SkipEmptyParts))
            m.t.Put("Startup", pair.section('=', 0, 0), pair.section('=', 1));
        m.Load();
        auto& ui = m.ui();
        const bool port = row.checked.contains("Port");
        EXPECT_EQ(m.w->TextRate(), row.textRate);
        EXPECT_EQ(m.app.MessageRate, row.messageRate);
        EXPECT_EQ(ui.CHKServRec->isChecked(), row.checked.contains("ServRec"));
        EXPECT_EQ(ui.CHKGameTracker->isChecked(), row.checked.contains("LanOnly"));
        EXPECT_EQ(ui.CHKPort->isChecked(), port);
        EXPECT_EQ(ui.TXTPort->isEnabled(), port);
        EXPECT_EQ(ui.TXTPort->text(), row.portText);
        if (port) {
            EXPECT_EQ(m.t.Get("Startup", "PortNum"), row.portText);
        }
        // The worked example of the options file is what a first run shows.
        EXPECT_EQ(m.Text().toLatin1(), texts::kFirstRunOptions);
        QStringList lists;
        for (QComboBox* list :
             {ui.MaxPlayers, ui.MaxTime, ui.MaxKills, ui.MaxCaps, ui.MaxGeo, ui.TeamDamage,
              ui.FallDamage, ui.WeaponStay, ui.ForceSpawn, ui.Balance})
            lists << QString("%1..%2 %3")
                         .arg(list->itemText(0), list->itemText(list->count() - 1),
                              QString::number(list->count()));
        EXPECT_EQ(lists.join(", "), "2..32 31, 5..60 56, 1..100 100, 1..25 25, 0..128 129, "
                                    "True..False 2, True..False 2, True..False 2, True..False 2, "
                                    "True..False 2");
        EXPECT_EQ(QStringList({ui.LSTConfig->currentText(), QString::number(ui.LSTConfig->count()),
                               ui.TXTConfName->text(), ui.TXTMod->text(), ui.MCS->text()}),
                  QStringList({"DEFAULT", "1", "Default", "None", "0 Maps"}));
        EXPECT_EQ(m.app.CurrentConf, "DEFAULT");
        EXPECT_EQ(m.app.Saved, "yes");
        EXPECT_FALSE(m.timer("TMRAdds")->isActive());
        EXPECT_FALSE(m.timer("TMRSend")->isActive());
    }
}

TEST(LaunchSwitches, ClicksAndTypedPortsAreStored) {
    MainWindow m;
    auto& ui = m.Start().ui();
    for (QCheckBox* box : {ui.CHKGameTracker, ui.CHKServRec, ui.CHKPort})
        box->setChecked(true);
    for (const char* key : {"lanonly", "ServRec", "Port"})
        EXPECT_EQ(m.t.Get("Startup", key), "1") << key;
    EXPECT_TRUE(ui.TXTPort->isEnabled());
    // Only digits and the point stay, the cursor at the end.
    const QString digits(320, u'7');
    // clang-format off
    for (const auto& [typed, kept] : QList<QPair<QString, QString>>{
             {"1234", "1234"}, {"12a34", "1234"}, {"12.5", "12.5"}, {"abc", ""}, {"7 7", "77"},
             {digits, digits}, {digits + "x" + digits, digits + digits}}) {
        // clang-format on
        ui.TXTPort->setText(typed);
        EXPECT_EQ(ui.TXTPort->text(), kept) << typed.toStdString();
        EXPECT_EQ(ui.TXTPort->cursorPosition(), kept.size()) << typed.toStdString();
        EXPECT_EQ(m.t.Get("Startup", "PortNum"), kept) << typed.toStdString();
    }
    ui.CHKPort->setChecked(false);
    EXPECT_EQ(m.t.Get("Startup", "Port"), "0");
    EXPECT_FALSE(ui.TXTPort->isEnabled());
}
