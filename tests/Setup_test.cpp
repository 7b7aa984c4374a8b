#include "TestServices.h"

#include "settings/ServerConfig.h"
#include "ui/Hostwarden.h"
#include "ui/Setup.h"
#include "ui/WindowRegistry.h"
#include "ui/server/SetupHandlers.h"
#include "ui/settings/ResetHandlers.h"
#include "ui_Hostwarden.h"
#include "ui_Setup.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

const MessageRequest kWarning{
    "Warning, it is highly recommended that you make a backup of dedicated_server.txt located "
    "in your redfaction game directory. This application will modify this file. Ckick Cancel to "
    "exit setup or click OK to continue",
    "Warning", MsgButtons::OKCancel, MsgIcon::None, MsgDefault::First};

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
        delete forms.Setup;
    }
};

} // namespace

TEST(Setup, LaterRunGoesStraightToTheMainWindow) {
    const struct {
        const char* what;
        bool storeLocation;
    } rows[] = {{"with a stored directory", true}, {"without a stored directory", false}};
    for (const auto& row : rows) {
        SetupRun r;
        CreateDefaultConfig(r.t.store, kAppName);
        r.t.Put("Startup", "HasRunSetup", "1");
        if (row.storeLocation)
            r.t.Put("Startup", "RFLocation", "/games/rf/");
        r.Start();
        SCOPED_TRACE(row.what);
        EXPECT_TRUE(r.t.messages.shown.isEmpty());
        EXPECT_EQ(r.forms.Setup, nullptr);
        EXPECT_FALSE(r.setup->isVisible());
        ASSERT_NE(r.forms.MainWindow, nullptr);
        EXPECT_TRUE(r.forms.MainWindow->isVisible());
        EXPECT_EQ(r.forms.MainWindow->windowTitle(), "Hostwarden 2.0.1 by Velloquin");
        EXPECT_EQ(r.app.GameDir, row.storeLocation ? "/games/rf/" : "");
        EXPECT_EQ(r.t.Get("Startup", "RFLocation"), r.app.GameDir);
        EXPECT_EQ(r.forms.MainWindow->ui->TXTConfName->text(), "Default");
        EXPECT_EQ(r.t.Get("Default", "maxplayers"), "16");
        delete r.setup; // deleteLater has not run: no event loop here
    }
}

TEST(Setup, FirstRunWarnsShowsTheStoredDirectoryAndCreatesTheDefaults) {
    SetupRun r;
    r.t.Put("Startup", "RFLocation", "/games/rf/");
    r.t.Put("Default", "maxplayers", "4");
    r.t.Put("ConfName", "ConfCount", "3");
    r.Start();
    ASSERT_EQ(r.t.messages.shown.size(), 1);
    EXPECT_EQ(r.t.messages.shown[0], kWarning);
    ASSERT_NE(r.forms.Setup, nullptr);
    EXPECT_EQ(r.forms.MainWindow, nullptr);
    EXPECT_EQ(r.setup->ui->TXTRFLocate->text(), "/games/rf/");
    EXPECT_TRUE(r.setup->ui->CMDOK->isEnabled());

    r.setup->show();
    QTest::mouseClick(r.setup->ui->CMDOK, Qt::LeftButton);
    EXPECT_EQ(r.t.Get("Startup", "HasRunSetup"), "1");
    EXPECT_EQ(r.t.Get("Startup", "RFLocation"), "/games/rf/");
    EXPECT_EQ(r.t.Get("ConfName", "ConfCount"), "1");
    EXPECT_EQ(r.t.Get("ConfName", "Conf1"), "DEFAULT");
    EXPECT_EQ(r.t.Get("Default", "maxplayers"), "16");
    ASSERT_NE(r.forms.MainWindow, nullptr);
    EXPECT_TRUE(r.forms.MainWindow->isVisible());
    EXPECT_FALSE(r.setup->isVisible());
    delete r.setup;
}

TEST(Setup, EmptyStoreStartsWithDefaultsOnceADirectoryIsChosen) {
    SetupRun r;
    r.Start();
    ASSERT_EQ(r.t.messages.shown.size(), 1);
    EXPECT_FALSE(r.setup->ui->CMDOK->isEnabled());
    // What Browse's OK does.
    r.setup->ui->TXTRFLocate->setText("/games/rf/");
    r.setup->ui->CMDOK->setEnabled(true);
    Setup_CMDOK_Click(*r.setup);

    Hostwarden& w = *r.forms.MainWindow;
    EXPECT_EQ(w.TextRate(), 110);
    EXPECT_EQ(r.app.MessageRate, 3);
    EXPECT_FALSE(w.ui->CHKServRec->isChecked());
    EXPECT_FALSE(w.ui->CHKGameTracker->isChecked());
    EXPECT_FALSE(w.ui->CHKPort->isChecked());
    EXPECT_TRUE(w.ui->TXTPort->text().isEmpty());
    EXPECT_FALSE(w.ui->TXTPort->isEnabled());
    EXPECT_EQ(r.app.CurrentConf, "DEFAULT");
    EXPECT_EQ(w.ui->TXTConfName->text(), "Default");
    EXPECT_EQ(r.app.Saved, "yes");
    delete r.setup;
}

TEST(Setup, CancelEndsTheProgramAndStoresNothing) {
    {
        SetupRun r;
        r.t.messages.answers = {MsgAnswer::Cancel};
        r.Start();
        EXPECT_EQ(r.t.end.ended, 1);
        EXPECT_EQ(r.forms.MainWindow, nullptr);
        EXPECT_TRUE(r.t.store.IsEmpty(kAppName));
    }
    {
        SetupRun r;
        r.Start();
        QTest::mouseClick(r.setup->ui->CMDCancel, Qt::LeftButton);
        EXPECT_EQ(r.t.end.ended, 1);
        EXPECT_TRUE(r.t.store.IsEmpty(kAppName));
    }
}

TEST(Setup, AfterAResetTheNextStartIsAFirstRunWithOnlyDefault) {
    {
        SetupRun r;
        CreateDefaultConfig(r.t.store, kAppName);
        r.t.Put("ConfName", "ConfCount", "2");
        r.t.Put("ConfName", "Conf2", "CLAN");
        r.t.Put("Startup", "HasRunSetup", "1");
        r.t.Put("Startup", "RFLocation", "/games/rf/");
        r.app.AppName = kAppName;
        r.t.messages.answers = {MsgAnswer::Yes};
        CMDReset_Click(r.t.services, r.app);
        ASSERT_EQ(r.t.end.ended, 1);
        EXPECT_TRUE(r.t.store.IsEmpty(kAppName));
    }
    SetupRun next;
    next.Start();
    ASSERT_EQ(next.t.messages.shown.size(), 1);
    EXPECT_EQ(next.t.messages.shown[0], kWarning);
    next.setup->ui->TXTRFLocate->setText("/games/rf/");
    Setup_CMDOK_Click(*next.setup);
    EXPECT_EQ(next.forms.MainWindow->ui->LSTConfig->count(), 1);
    EXPECT_EQ(next.forms.MainWindow->ui->LSTConfig->itemText(0), "DEFAULT");
    delete next.setup;
}
