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
struct SetupRun {
    TestServices t;
    AppState app;
    WindowRegistry forms;
    Setup* setup = nullptr;

    void Start() {
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

TEST(Setup, LaterRunGoesStraightToTheMainWindow) {
    for (const QString stored : {"/games/rf/", ""}) {
        SCOPED_TRACE(stored.toStdString());
        SetupRun r;
        CreateDefaultConfig(r.t.store, kAppName);
        r.t.Put("Startup", "HasRunSetup", "1");
        if (!stored.isEmpty())
            r.t.Put("Startup", "RFLocation", stored);
        r.Start();
        EXPECT_TRUE(r.t.messages.shown.isEmpty());
        EXPECT_EQ(r.forms.Setup, nullptr);
        EXPECT_FALSE(r.setup->isVisible());
        ASSERT_NE(r.forms.MainWindow, nullptr);
        EXPECT_TRUE(r.forms.MainWindow->isVisible());
        ExpectNoCloseBox(r.forms.MainWindow);
        EXPECT_EQ(r.app.GameDir, stored);
        EXPECT_EQ(r.t.Get("Startup", "RFLocation"), stored);
    }
}

TEST(Setup, FirstRunWarnsThenOKCreatesTheDefaultsAndCancelEndsStoringNothing) {
    const MessageRequest warning{
        "Warning, it is highly recommended that you make a backup of dedicated_server.txt "
        "located in your redfaction game directory. This application will modify this file. "
        "Ckick Cancel to exit setup or click OK to continue",
        "Warning", MsgButtons::OKCancel, MsgIcon::None, MsgDefault::First};
    const struct {
        const char* what;
        bool storedDir;
        MsgAnswer answer;
        const char* button; // clicked in the Setup window
    } rows[] = {
        {"a stored directory and older defaults", true, MsgAnswer::OK, "CMDOK"},
        {"an empty store, as after a reset", false, MsgAnswer::OK, "CMDOK"},
        {"cancel at the warning", false, MsgAnswer::Cancel, nullptr},
        {"cancel in the window", true, MsgAnswer::OK, "CMDCancel"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        SetupRun r;
        if (row.storedDir) {
            r.t.Put("Startup", "RFLocation", "/games/rf/");
            r.t.Put("Default", "maxplayers", "4");
            r.t.Put("ConfName", "ConfCount", "3");
        }
        const int writes = r.t.store.writes;
        r.t.messages.answers = {row.answer};
        r.Start();
        EXPECT_EQ(r.t.messages.shown, QList{warning});
        if (row.button) {
            Ui::Setup& ui = *r.setup->ui;
            EXPECT_EQ(ui.TXTRFLocate->text(), row.storedDir ? "/games/rf/" : "");
            EXPECT_EQ(ui.CMDOK->isEnabled(), row.storedDir) << "enabled by a directory";
            ExpectNoCloseBox(r.setup);
            if (!row.storedDir) { // what Browse's OK does
                ui.TXTRFLocate->setText("/games/rf/");
                ui.CMDOK->setEnabled(true);
            }
            r.setup->show();
            QTest::mouseClick(r.setup->findChild<QPushButton*>(row.button), Qt::LeftButton);
        }
        const bool ends = !row.button || QString(row.button) == "CMDCancel";
        EXPECT_EQ(r.t.end.ended, ends ? 1 : 0);
        if (ends) {
            EXPECT_EQ(r.t.store.writes, writes);
            EXPECT_EQ(r.forms.MainWindow, nullptr);
            continue;
        }
        EXPECT_EQ(QStringList({r.t.Get("Startup", "HasRunSetup"), r.t.Get("Startup", "RFLocation"),
                               r.t.Get("ConfName", "ConfCount"), r.t.Get("ConfName", "Conf1"),
                               r.t.Get("Default", "maxplayers")}),
                  QStringList({"1", "/games/rf/", "1", "DEFAULT", "16"}));
        ASSERT_NE(r.forms.MainWindow, nullptr);
        EXPECT_TRUE(r.forms.MainWindow->isVisible());
        EXPECT_FALSE(r.setup->isVisible());
    }
}

TEST(Startup, RestoresThePreferencesAlongTheirChain) {
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
    }
}

TEST(Startup, LoadsDefaultIntoEveryControl) {
    MainWindow m;
    auto& ui = m.Start().ui();
    // The worked example of the options file is what a first run shows.
    EXPECT_EQ(m.Text().toLatin1(), texts::kFirstRunOptions);
    QStringList lists;
    for (QComboBox* list : {ui.MaxPlayers, ui.MaxTime, ui.MaxKills, ui.MaxCaps, ui.MaxGeo,
                            ui.TeamDamage, ui.FallDamage, ui.WeaponStay, ui.ForceSpawn, ui.Balance})
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

TEST(LaunchSwitches, ClicksAndTypedPortsAreStored) {
    MainWindow m;
    auto& ui = m.Start().ui();
    for (QCheckBox* box : {ui.CHKGameTracker, ui.CHKServRec, ui.CHKPort})
        box->setChecked(true);
    for (const char* key : {"lanonly", "ServRec", "Port"})
        EXPECT_EQ(m.t.Get("Startup", key), "1") << key;
    EXPECT_TRUE(ui.TXTPort->isEnabled());
    // Only digits and the point stay, the cursor at the end.
    for (const auto& [typed, kept] : QList<QPair<QString, QString>>{
             {"1234", "1234"}, {"12a34", "1234"}, {"12.5", "12.5"}, {"abc", ""}, {"7 7", "77"}}) {
        ui.TXTPort->setText(typed);
        EXPECT_EQ(ui.TXTPort->text(), kept) << typed.toStdString();
        EXPECT_EQ(ui.TXTPort->cursorPosition(), kept.size()) << typed.toStdString();
        EXPECT_EQ(m.t.Get("Startup", "PortNum"), kept) << typed.toStdString();
    }
    ui.CHKPort->setChecked(false);
    EXPECT_EQ(m.t.Get("Startup", "Port"), "0");
    EXPECT_FALSE(ui.TXTPort->isEnabled());
}
