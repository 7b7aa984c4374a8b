#include "MainWindow.h"
#include "Texts.h"

#include "server/StartProgram.h"
#include "ui/server/LaunchHandlers.h"
#include "ui/server/WatchHandlers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Launch : MainWindow {
    explicit Launch(const QString& gameDir = "C:\\Games\\RF\\") {
        Start();
        app.GameDir = gameDir;
    }
};

using Posts = QList<FakeWindowServices::Post>;

MessageRequest ErrorBox(const QString& text, const QString& title, MsgIcon icon) {
    return {text, title, MsgButtons::OK, icon, MsgDefault::First};
}

} // namespace

// A blank in the game folder's path does not start the program named by its first word.
TEST(Launch, CommandLineFollowsTheControls) {
    QTemporaryDir dir;
    const QString gameDir = dir.path() + "/Red Faction/";
    ASSERT_TRUE(QDir().mkpath(gameDir));
    const struct {
        const char* what;
        bool lanOnly, port;
        QString portText, mod, name;
        QString result; // the parameters, or the message of a refused launch
        bool refused = false;
    } rows[] = {
        {"the worked example's switches", true, true, "1234", "None", "Default",
         "-dedicated Default -lanonly -port 1234"},
        {"port unchecked ignores the field", false, false, "12", "None", "A", "-dedicated A"},
        {"three digits", false, true, "123", "None", "A", "Invalid Port", true},
        {"empty port", false, true, "", "None", "A", "You must specify a local port number to use",
         true},
        {"mod is compared exactly", false, false, "", "none", "A", "-dedicated A -mod none"},
        {"name with a blank, unquoted, and a mod", false, false, "", "Rocketball", " My Server",
         "-dedicated  My Server -mod Rocketball"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Launch m(gameDir);
        const WindowHandle old = m.t.windows.Add(texts::kServerTitle);
        m.ui().CHKGameTracker->setChecked(row.lanOnly);
        m.ui().CHKPort->setChecked(row.port);
        m.ui().TXTPort->setText(row.portText);
        m.ui().TXTMod->setText(row.mod);
        m.app.CurrentConf = row.name; // storing gives the configuration the entry's name
        QFile::remove(gameDir + "dedicated_server.txt");
        m.w->ServerLaunched(7);
        m.timer("TMRAdds")->stop();
        CMDLaunch_Click(*m.w);
        // Refused or not: the old console closed, the file written, the configuration stored.
        EXPECT_EQ(m.t.windows.posts, (Posts{{old, WM_CANCELMODE}, {old, WM_CLOSE}}));
        EXPECT_TRUE(QFile::exists(gameDir + "dedicated_server.txt"));
        EXPECT_EQ(m.t.Get(row.name, "name"), row.name);
        EXPECT_EQ(m.w->Automation().ServerHandle(), row.refused ? 0 : 42);
        EXPECT_EQ(m.t.messages.shown,
                  row.refused ? QList{ErrorBox(row.result, "Config Error", MsgIcon::Critical)}
                              : QList<MessageRequest>());
        ASSERT_EQ(m.t.launcher.calls.size(), row.refused ? 0 : 1);
        if (row.refused)
            continue;
        const RecordingLauncher::Call& call = m.t.launcher.calls[0];
        EXPECT_EQ(QStringList({call.program, call.parameters, call.workingDirectory}),
                  QStringList({gameDir + "RF.EXE", row.result, gameDir.chopped(1)}));
        EXPECT_EQ(call.windowStyle, 1);
    }
}

// The server started by the whole line is watched too: a console missing after 30 s is told.
TEST(Launch, WritesTheOptionsBoxAsItStandsStoresTheConfigurationAndWatchesTheServer) {
    QTemporaryDir dir;
    Launch m(dir.path() + "/");
    m.t.launcher.shellResults = {2};
    m.ui().TXTSTat->appendPlainText("$Hand Edit: 1");
    // Rebuilds: the hand edit is gone. No character of a value is altered by a later one.
    m.ui().TXTPassword->setText(QString::fromUtf8("p\u00a0w\nx\ry"));
    m.ui().TXTSTat->appendPlainText(QString::fromUtf8("$Kept: 1\u00a0"));
    CMDLaunch_Click(*m.w);
    QFile file(dir.path() + "/dedicated_server.txt");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    // Written before the configuration is stored: the name is still the first run's.
    EXPECT_EQ(file.readAll(),
              QByteArray(texts::kFirstRunOptions)
                      .replace("$Password:       \"\"", "$Password:       \"p\xA0w\nx\ry\"") +
                  "\r\n$Kept: 1\xA0");
    EXPECT_EQ(m.ui().TXTConfName->text(), "DEFAULT");
    EXPECT_TRUE(m.Text().contains("$Name:           \"DEFAULT\"\r\n"));
    EXPECT_EQ(QStringList({m.t.Get("DEFAULT", "name"), m.t.Get("DEFAULT", "password")}),
              QStringList({"DEFAULT", QString::fromUtf8("p\u00a0w\nx\ry")}));
    EXPECT_EQ(m.app.Saved, "yes");
    EXPECT_TRUE(m.w->Automation().ServerHandle() == 2 && m.timer("TMRAdds")->isActive());

    const WindowHandle console = m.t.windows.Add("Wine: " + texts::kServerTitle.toUpper());
    ConsoleWatch_Timer(*m.w);
    m.t.windows.Vanish(console);
    ConsoleWatch_Timer(*m.w);
    m.t.launcher.End(3, "cannot start");
    ConsoleWatch_Timer(*m.w); // no server left to watch
    ASSERT_EQ(m.t.messages.shown.size(), 2);
    EXPECT_TRUE(m.t.messages.shown[0].text.endsWith(
        "30 seconds after its start it still shows no window titled \"Red Faction Dedicated "
        "Server\", so no messages can be typed into it.\r\n\r\nProgram: " +
        dir.path() + "/RF.EXE\r\nThe last lines of its error output:\r\nstderr of 1001"));
}

TEST(Launch, FailuresAreReported) {
    QTemporaryDir dir;
    // A folder below a plain file cannot be made, not even by root.
    QFile plain(dir.path() + "/plain");
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    const struct {
        const char* what;
        QString gameDir;
        QList<std::int32_t> shell, commandLine;
        const char* title; // of the box that reports it
    } rows[] = {{"no resources", "/", {0}, {42}, "Dedicated Server Error"},
                {"small code, whole line fails too", "/", {2}, {2}, "Dedicated Server Error"},
                {"unwritable options file", "/plain/", {}, {}, "Options File Error"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Launch m(dir.path() + row.gameDir);
        m.t.launcher.shellResults = row.shell;
        m.t.launcher.commandLineResults = row.commandLine;
        CMDLaunch_Click(*m.w);
        EXPECT_FALSE(m.w->Automation().ServerHandle() || m.timer("TMRAdds")->isActive());
        ASSERT_EQ(m.t.messages.shown.size(), 1);
        const MessageRequest& box = m.t.messages.shown[0];
        const bool options = box.title == "Options File Error";
        EXPECT_EQ(box, options ? ErrorBox(box.text, row.title, MsgIcon::Critical)
                               : ErrorBox("RedFaction Dedicated Server Filed to Launch", row.title,
                                          MsgIcon::None));
        EXPECT_TRUE(!options || (m.t.launcher.calls.isEmpty() &&
                                 box.text.endsWith("\r\nThe server was not started.")))
            << box.text.toStdString();
    }
}

// No, and Yes when all is saved, are the operator journeys'.
TEST(Exit, AsksOffersToSaveClosesTheConsoleAndEnds) {
    const auto question = [](const char* text) {
        return MessageRequest{text, "Save and exit or just exit", MsgButtons::YesNo,
                              MsgIcon::Information, MsgDefault::Second};
    };
    const QList boxes{question("This will end the Hostwarden and Red Faction Dedicated Server "
                               "Sessions, Do you wish to continue?"),
                      question("Property values have changed?\r\nYes = Save and Exit.\r\nNo = "
                               "Just Exit")};
    using enum MsgAnswer;
    const struct {
        const char* what;
        QString saved;
        QList<MsgAnswer> answers; // one a box
        bool stored;
    } rows[] = {{"empty flag counts as saved", "", {Yes}, false},
                {"changed, just exit", "no", {Yes, No}, false},
                {"changed, save and exit", "no", {Yes, Yes, Yes, OK}, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Launch m;
        const WindowHandle console = m.t.windows.Add(texts::kServerTitle);
        m.ui().TXTPassword->setText("changed");
        m.app.Saved = row.saved;
        m.t.messages.answers = row.answers;
        CMDExit_Click(*m.w);
        ASSERT_EQ(m.t.messages.shown.size(), row.answers.size());
        EXPECT_EQ(m.t.messages.shown.mid(0, 2), boxes.mid(0, row.answers.size()));
        EXPECT_EQ(std::pair(m.t.end.ended, m.t.beeper.beeps), std::pair(1, row.stored ? 2 : 1));
        EXPECT_EQ(m.t.windows.posts, Posts({{console, WM_CANCELMODE}, {console, WM_CLOSE}}));
        EXPECT_EQ(m.t.Get("DEFAULT", "password"), row.stored ? "changed" : "");
    }
}

// Program, parameters, folder; the line after the split when it changed.
TEST(SplitCommandLine, CutsProgramParametersAndFolder) {
    const char* const rows[][5] = {
        {R"(C:\Games\RF\RF.EXE -dedicated Default -lanonly)", R"(C:\Games\RF\RF.EXE)",
         "-dedicated Default -lanonly", R"(C:\Games\RF)"},
        {R"("C:\Program Files\RF\RF.EXE" -dedicated My Server)", R"(C:\Program Files\RF\RF.EXE)",
         "-dedicated My Server", R"(C:\Program Files\RF)",
         R"(C:\Program Files\RF\RF.EXE -dedicated My Server)"},
        {"RF.EXE -dedicated Default", "RF.EXE", "-dedicated Default", R"(C:\Hostwarden)"},
        // A game directory with a blank splits the program path.
        {R"(C:\My Games\RF\RF.EXE -dedicated Default)", R"(C:\My)",
         R"(Games\RF\RF.EXE -dedicated Default)", R"(C:\)"},
        // Only the leading blanks of the parameters go.
        {R"(C:\RF\RF.EXE   -dedicated  Two  Blanks )", R"(C:\RF\RF.EXE)",
         "-dedicated  Two  Blanks ", R"(C:\RF)"},
        {R"("C:\RF\RF.EXE")", R"(C:\RF\RF.EXE)", "", R"(C:\RF)", R"(C:\RF\RF.EXE)"},
        // An unclosed quote leaves the line whole, quote included.
        {R"("C:\RF\RF.EXE -dedicated X)", R"("C:\RF\RF.EXE -dedicated X)", "", R"("C:\RF)"},
        {"", "", "", R"(C:\Hostwarden)"},
        {"/RF.EXE -dedicated Default", "/RF.EXE", "-dedicated Default", "/"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row[0]);
        QString line = row[0];
        const CommandSplit split = SplitCommandLine(line, R"(C:\Hostwarden)");
        EXPECT_EQ(QStringList({split.program, split.parameters, split.workingDirectory, line}),
                  QStringList({row[1], row[2], row[3], row[4] ? row[4] : row[0]}));
    }
}

// Below 32 the whole line starts too; the caller always gets the first start's code.
TEST(StartProgram, StartsTheSplitProgramAndFallsBackToTheWholeLine) {
    const struct {
        std::int32_t primary, fallback;
        const char* workingDirectory = nullptr;
        bool askFallback = true; // the caller need not ask for the second start's code
    } rows[] = {{42, 0}, {42, 0, R"(D:\Elsewhere)"}, {0, 42}, {31, 2}, {32, 42}, {2, 0, {}, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.primary << " then " << row.fallback);
        RecordingLauncher launcher;
        launcher.shellResults = {row.primary};
        launcher.commandLineResults = {row.fallback};
        const QString program = R"(C:\My Games\RF\RF.EXE)", parameters = "-dedicated My Server";
        QString line = '"' + program + "\" " + parameters;
        std::int32_t fallback = -1;
        const auto folder =
            row.workingDirectory ? std::optional<QString>(row.workingDirectory) : std::nullopt;
        EXPECT_EQ(StartProgram(launcher, line, 1, folder, row.askFallback ? &fallback : nullptr),
                  row.primary);
        QList<RecordingLauncher::Call> expected = {
            {program, parameters, folder.value_or(R"(C:\My Games\RF)"), {}, 1}};
        if (row.primary < 32)
            expected.append({{}, {}, {}, program + " " + parameters, 1});
        EXPECT_EQ(launcher.calls, expected);
        EXPECT_EQ(fallback, row.primary < 32 && row.askFallback ? row.fallback : -1);
    }
}
