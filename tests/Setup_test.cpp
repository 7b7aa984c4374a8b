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

// A title bar but no close box: the operator leaves through the window's own buttons.
void ExpectNoCloseBox(const QWidget* window) {
    const Qt::WindowFlags flags = window->windowFlags();
    EXPECT_TRUE((flags & Qt::CustomizeWindowHint) && !(flags & Qt::WindowCloseButtonHint))
        << window->objectName().toStdString();
}

} // namespace

TEST(Setup, LaterRunGoesStraightToTheMainWindow) {
    for (const bool storeLocation : {true, false}) {
        SCOPED_TRACE(storeLocation ? "with a stored directory" : "without a stored directory");
        SetupRun r;
        CreateDefaultConfig(r.t.store, kAppName);
        r.t.Put("Startup", "HasRunSetup", "1");
        if (storeLocation)
            r.t.Put("Startup", "RFLocation", "/games/rf/");
        r.Start();
        EXPECT_TRUE(r.t.messages.shown.isEmpty());
        EXPECT_EQ(r.forms.Setup, nullptr);
        EXPECT_FALSE(r.setup->isVisible());
        ASSERT_NE(r.forms.MainWindow, nullptr);
        EXPECT_TRUE(r.forms.MainWindow->isVisible());
        ExpectNoCloseBox(r.forms.MainWindow);
        EXPECT_EQ(r.app.GameDir, storeLocation ? "/games/rf/" : "");
        EXPECT_EQ(r.t.Get("Startup", "RFLocation"), r.app.GameDir);
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
    ExpectNoCloseBox(r.setup);

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

TEST(Setup, CancelEndsTheProgramAndStoresNothing) {
    for (bool atTheWarning : {true, false}) {
        SCOPED_TRACE(atTheWarning ? "at the warning" : "in the window");
        SetupRun r;
        if (atTheWarning)
            r.t.messages.answers = {MsgAnswer::Cancel};
        r.Start();
        if (!atTheWarning)
            QTest::mouseClick(r.setup->ui->CMDCancel, Qt::LeftButton);
        EXPECT_EQ(r.t.end.ended, 1);
        EXPECT_EQ(r.forms.MainWindow, nullptr);
        EXPECT_TRUE(r.t.store.IsEmpty(kAppName));
    }
}

TEST(Setup, AfterAResetTheNextStartIsAFirstRunWithTheDefaultsOnly) {
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
    EXPECT_FALSE(next.setup->ui->CMDOK->isEnabled()) << "no directory chosen yet";
    // What Browse's OK does.
    next.setup->ui->TXTRFLocate->setText("/games/rf/");
    next.setup->ui->CMDOK->setEnabled(true);
    Setup_CMDOK_Click(*next.setup);

    Hostwarden& w = *next.forms.MainWindow;
    EXPECT_EQ(w.ui->LSTConfig->count(), 1);
    EXPECT_EQ(w.ui->LSTConfig->itemText(0), "DEFAULT");
    EXPECT_EQ(next.app.CurrentConf, "DEFAULT");
    EXPECT_EQ(next.app.Saved, "yes");
    delete next.setup;
}
