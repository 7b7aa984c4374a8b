#include "MainWindow.h"

#include "ui/server/LaunchHandlers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using Call = RecordingLauncher::Call;

struct Launch : MainWindow {
    Launch(const QString& gameDir = "C:\\Games\\RF\\") {
        SeedFirstRun();
        Load();
        app.GameDir = gameDir;
    }
};

} // namespace

TEST(Launch, CommandLineOfTheExampleOnWindowsAndLinuxPaths) {
    QTemporaryDir dir;
    // A Windows game path is only a file name here: the options file lands in the
    // current folder, and the command line keeps the path as it is.
    QDir::setCurrent(dir.path());
    QDir(dir.path()).mkpath("games/rf");
    const QString linuxDir = dir.path() + "/games/rf";
    const struct {
        QString gameDir;
        QString program;
        QString workingDirectory;
    } rows[] = {
        {"C:\\Games\\RF\\", "C:\\Games\\RF\\RF.EXE", "C:\\Games\\RF"},
        {linuxDir + "/", linuxDir + "/RF.EXE", linuxDir},
    };
    for (const auto& row : rows) {
        Launch m(row.gameDir);
        const WindowHandle old = m.t.windows.Add("Red Faction Dedicated Server");
        // The launch stores the configuration first, which gives it the list entry's
        // name: the example's name "Default" is the entry of a list that holds it so.
        m.app.CurrentConf = "Default";
        m.ui().CHKGameTracker->setChecked(true);
        m.ui().CHKPort->setChecked(true);
        m.ui().TXTPort->setText("1234");
        CMDLaunch_Click(*m.w);
        ASSERT_EQ(m.t.launcher.calls.size(), 1) << row.gameDir.toStdString();
        const Call& call = m.t.launcher.calls[0];
        EXPECT_EQ(call.program, row.program);
        EXPECT_EQ(call.parameters, "-dedicated Default -lanonly -port 1234");
        EXPECT_EQ(call.workingDirectory, row.workingDirectory);
        EXPECT_EQ(call.windowStyle, 1);
        EXPECT_EQ(m.t.windows.posts,
                  (QList<FakeWindowServices::Post>{{old, WM_CANCELMODE}, {old, WM_CLOSE}}));
        EXPECT_EQ(m.w->Automation().ServerHandle(), 42);
        EXPECT_TRUE(m.timer("TMRAdds")->isActive());
    }
}

TEST(Launch, SwitchesFollowTheControls) {
    const struct {
        const char* what;
        bool port;
        const char* portText;
        const char* mod;
        const char* name;
        const char* parameters; // null: refused with the message below
        const char* message;
    } rows[] = {
        {"port unchecked ignores the field", false, "12", "None", "A", "-dedicated A", nullptr},
        {"three digits", true, "123", "None", "A", nullptr, "Invalid Port"},
        {"empty port", true, "", "None", "A", nullptr,
         "You must specify a local port number to use"},
        {"four digits", true, "7755", "None", "A", "-dedicated A -port 7755", nullptr},
        {"a mod", false, "", "Rocketball", "A", "-dedicated A -mod Rocketball", nullptr},
        {"an empty mod still adds the switch", false, "", "", "A", "-dedicated A -mod ", nullptr},
        {"mod is compared exactly", false, "", "none", "A", "-dedicated A -mod none", nullptr},
        {"name with a blank, unquoted", false, "", "None", " My Server", "-dedicated  My Server",
         nullptr},
    };
    QTemporaryDir dir;
    for (const auto& row : rows) {
        Launch m(dir.path() + "/");
        m.ui().CHKPort->setChecked(row.port);
        m.ui().TXTPort->setEnabled(true);
        m.ui().TXTPort->setText(row.portText);
        m.ui().TXTMod->setText(row.mod);
        m.app.CurrentConf = row.name;
        m.w->ServerLaunched(7);
        m.timer("TMRAdds")->stop();
        CMDLaunch_Click(*m.w);
        SCOPED_TRACE(row.what);
        if (row.parameters) {
            ASSERT_EQ(m.t.launcher.calls.size(), 1);
            EXPECT_EQ(m.t.launcher.calls[0].parameters, row.parameters);
            EXPECT_TRUE(m.t.messages.shown.isEmpty());
            continue;
        }
        EXPECT_TRUE(m.t.launcher.calls.isEmpty());
        ASSERT_EQ(m.t.messages.shown.size(), 1);
        EXPECT_EQ(m.t.messages.shown[0],
                  (MessageRequest{row.message, "Config Error", MsgButtons::OK, MsgIcon::Critical,
                                  MsgDefault::First}));
        // A refused launch has still closed the old console, written the file and
        // stored the configuration.
        EXPECT_EQ(m.w->Automation().ServerHandle(), 0);
        EXPECT_TRUE(QFile::exists(dir.path() + "/dedicated_server.txt"));
        EXPECT_EQ(m.t.Get(row.name, "name"), row.name);
        EXPECT_FALSE(m.timer("TMRAdds")->isActive());
    }
}

TEST(Launch, WritesTheOptionsBoxAsItStandsThenStoresTheConfiguration) {
    // The file is written before the configuration is stored, the command line after:
    // storing gives the configuration the name of its list entry.
    QTemporaryDir dir;
    Launch m(dir.path() + "/");
    m.ui().TXTSTat->appendPlainText("$Hand Edit: 1");
    m.ui().TXTPassword->setText("pw"); // rebuilds: the hand edit is gone
    m.ui().TXTSTat->appendPlainText("$Kept: 1");
    const QString shown = m.Text();
    ASSERT_TRUE(shown.contains("$Name:           \"Default\"\r\n"));
    ASSERT_FALSE(shown.contains("$Hand Edit"));
    CMDLaunch_Click(*m.w);
    QFile file(dir.path() + "/dedicated_server.txt");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), shown.toLatin1());
    EXPECT_TRUE(shown.endsWith("$Kept: 1") || shown.contains("$Kept: 1\r\n"));
    ASSERT_EQ(m.t.launcher.calls.size(), 1);
    EXPECT_EQ(m.t.launcher.calls[0].parameters, "-dedicated DEFAULT");
    EXPECT_EQ(m.ui().TXTConfName->text(), "DEFAULT");
    EXPECT_EQ(m.t.Get("DEFAULT", "password"), "pw");
    EXPECT_EQ(m.app.Saved, "yes");
}

TEST(Launch, FailedStartsAreReported) {
    const struct {
        const char* what;
        QList<std::int32_t> shell, commandLine;
        std::int32_t handle;
        bool reported;
    } rows[] = {
        {"no resources", {0}, {42}, 0, true},
        {"small code, whole line starts", {2}, {42}, 2, false},
        {"small code, whole line fails too", {2}, {2}, 0, true},
    };
    QTemporaryDir dir;
    for (const auto& row : rows) {
        Launch m(dir.path() + "/");
        m.t.launcher.shellResults = row.shell;
        m.t.launcher.commandLineResults = row.commandLine;
        CMDLaunch_Click(*m.w);
        SCOPED_TRACE(row.what);
        EXPECT_EQ(m.w->Automation().ServerHandle(), row.handle);
        EXPECT_EQ(m.timer("TMRAdds")->isActive(), !row.reported);
        ASSERT_EQ(m.t.messages.shown.size(), row.reported ? 1 : 0);
        if (row.reported) {
            EXPECT_EQ(m.t.messages.shown[0],
                      (MessageRequest{"RedFaction Dedicated Server Filed to Launch",
                                      "Dedicated Server Error", MsgButtons::OK, MsgIcon::None,
                                      MsgDefault::First}));
        }
    }
}

TEST(Launch, UnwritableOptionsFileStopsTheLaunch) {
    Launch m("/nonexistent/hostwarden/");
    CMDLaunch_Click(*m.w);
    EXPECT_TRUE(m.t.launcher.calls.isEmpty());
    ASSERT_EQ(m.t.messages.shown.size(), 1);
    const MessageRequest& box = m.t.messages.shown[0];
    EXPECT_TRUE(box.text.endsWith("\r\nThe server was not started.")) << box.text.toStdString();
    EXPECT_EQ(box, (MessageRequest{box.text, "Options File Error", MsgButtons::OK,
                                   MsgIcon::Critical, MsgDefault::First}));
    EXPECT_EQ(m.w->Automation().ServerHandle(), 0);
}

TEST(Exit, AsksOffersToSaveClosesTheConsoleAndEnds) {
    const MessageRequest first{"This will end the Hostwarden and Red Faction Dedicated Server "
                               "Sessions, Do you wish to continue?",
                               "Save and exit or just exit", MsgButtons::YesNo,
                               MsgIcon::Information, MsgDefault::Second};
    const MessageRequest second{"Property values have changed?\r\nYes = Save and Exit.\r\nNo = "
                                "Just Exit",
                                "Save and exit or just exit", MsgButtons::YesNo,
                                MsgIcon::Information, MsgDefault::Second};
    const struct {
        const char* what;
        QString saved;
        QList<MsgAnswer> answers;
        int boxes;
        bool ends, stored, console = true;
    } rows[] = {
        {"No leaves everything running", "no", {MsgAnswer::No}, 1, false, false},
        {"saved: one question", "yes", {MsgAnswer::Yes}, 1, true, false},
        {"empty flag counts as saved", "", {MsgAnswer::Yes}, 1, true, false},
        {"changed, just exit", "no", {MsgAnswer::Yes, MsgAnswer::No}, 2, true, false},
        {"changed, save and exit",
         "no",
         {MsgAnswer::Yes, MsgAnswer::Yes, MsgAnswer::Yes, MsgAnswer::OK},
         4,
         true,
         true},
        {"no console: nothing to close", "yes", {MsgAnswer::Yes}, 1, true, false, false},
    };
    for (const auto& row : rows) {
        Launch m;
        const WindowHandle console =
            row.console ? m.t.windows.Add("Red Faction Dedicated Server") : 0;
        m.ui().TXTPassword->setText("changed");
        m.app.Saved = row.saved;
        m.t.messages.answers = row.answers;
        CMDExit_Click(*m.w);
        SCOPED_TRACE(row.what);
        ASSERT_EQ(m.t.messages.shown.size(), row.boxes);
        EXPECT_EQ(m.t.messages.shown[0], first);
        if (row.boxes > 1) {
            EXPECT_EQ(m.t.messages.shown[1], second);
        }
        EXPECT_EQ(m.t.end.ended, row.ends ? 1 : 0);
        EXPECT_EQ(m.t.beeper.beeps, row.ends ? (row.stored ? 2 : 1) : 0);
        EXPECT_EQ(m.t.windows.posts.size(), row.ends && row.console ? 2 : 0);
        if (row.ends && row.console) {
            EXPECT_EQ(m.t.windows.posts.last(), (FakeWindowServices::Post{console, WM_CLOSE}));
        }
        EXPECT_EQ(m.t.Get("DEFAULT", "password"), row.stored ? "changed" : "");
    }
}
