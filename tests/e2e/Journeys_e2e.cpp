// The operator's journeys through the main window: the first start (backup warning, Setup,
// the first-run configuration) and later starts, minimizing, launching the stand-in server
// and leaving the program.
#include "Journey.h"

#include <QFile>

using namespace e2e;

namespace {

// The warning's Cancel ends the program and stores nothing; its OK leads to Setup, whose OK
// stores the first-run configuration and opens the main window. A later start goes straight
// to the main window and keeps the operator's own values; Minimize iconifies it.
TEST_F(Journey, FirstRunWarningSetupAndALaterStart) {
    const QByteArray seeded = "[Startup]\nRFLocation=" + GameDir().toUtf8() + "\n";
    Seed(seeded);
    hostwarden_ = StartHostwarden();
    auto warning = desktop_.WaitFor("Warning");
    ASSERT_TRUE(warning) << "no warning; windows: " << Windows();
    ASSERT_TRUE(Answer(*warning, "Escape")); // Cancel of an OK/Cancel box
    EXPECT_TRUE(hostwarden_.WaitForExit(10s));
    EXPECT_FALSE(desktop_.Find("Setup"));
    EXPECT_EQ(Settings(), seeded);

    hostwarden_ = StartHostwarden();
    ASSERT_TRUE(warning = desktop_.WaitFor("Warning"));
    EXPECT_FALSE(desktop_.Find("Setup")) << "Setup is shown only after the warning";
    ASSERT_TRUE(Answer(*warning, "Return"));
    const auto setup = desktop_.WaitFor("Setup");
    ASSERT_TRUE(setup) << "no Setup after the warning's OK";
    ASSERT_TRUE(Click(*setup, "Setup", "CMDOK"));
    main_ = desktop_.WaitFor(kMainTitle).value_or(0);
    ASSERT_TRUE(main_) << "Setup's OK did not lead on; windows: " << Windows();
    EXPECT_TRUE(desktop_.WaitGone(*setup)) << "Setup stays after its OK";
    EXPECT_TRUE(Section("Startup").contains("HasRunSetup=1"));
    ASSERT_TRUE(hostwarden_.IsRunning());
    hostwarden_.Stop();

    QByteArray settings = Settings();
    ASSERT_TRUE(settings.contains("\nmaxplayers=16\n"));
    Seed(settings.replace("\nmaxplayers=16\n", "\nmaxplayers=12\n"));
    hostwarden_ = StartHostwarden();
    bool firstRunWindows = false;
    ASSERT_TRUE(WaitUntil(
        [&] {
            const QStringList titles = desktop_.Titles();
            firstRunWindows |= titles.contains("Warning") || titles.contains("Setup");
            return titles.contains(kMainTitle);
        },
        20s))
        << "no main window; windows: " << Windows();
    EXPECT_FALSE(firstRunWindows);
    EXPECT_TRUE(Section("Default").contains("maxplayers=12"));
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=1", "Conf1=DEFAULT"}));

    main_ = desktop_.Find(kMainTitle).value_or(0);
    const auto iconic = [&] {
        const QString state =
            desktop_.Run("xprop", {"-id", QString::number(main_), "_NET_WM_STATE", "WM_STATE"})
                .value_or("");
        return state.contains("_NET_WM_STATE_HIDDEN") && state.contains("Iconic");
    };
    ASSERT_FALSE(iconic());
    ASSERT_TRUE(ClickMain("CMDMin"));
    EXPECT_TRUE(WaitUntil(iconic, 10s)) << "Minimize did not iconify the main window";
    EXPECT_TRUE(hostwarden_.IsRunning());
}

class Launch : public Journey, public testing::WithParamInterface<const char*> {};

// The launch stores the configuration under its list entry before it builds the command
// line, so the server is started with the entry's spelling. Exit answered No keeps
// everything running; answered Yes, it closes the server and ends the program.
TEST_P(Launch, WritesTheOptionsStartsTheServerStoresAndExitClosesIt) {
    const QString entry = GetParam();
    ASSERT_NO_FATAL_FAILURE(StartMain({.listEntry = entry}));
    ASSERT_FALSE(QFile::exists(GameFile("dedicated_server.txt")));
    ASSERT_TRUE(ClickMain("CMDLaunch"));

    const auto server = desktop_.WaitFor(kServerTitle);
    ASSERT_TRUE(server) << "no server window; windows: " << Windows();
    EXPECT_EQ(ReadFile(GameFile("dedicated_server.txt")), kFirstRunOptions);
    const QStringList arguments = GameLines("commandline.txt");
    ASSERT_FALSE(arguments.isEmpty());
    EXPECT_TRUE(arguments[0].endsWith("/RF.EXE")) << arguments[0];
    EXPECT_EQ(arguments.mid(1), QStringList({"-dedicated", entry}));
    EXPECT_TRUE(Section("Default").contains("name=" + entry)) << Settings().toStdString();

    ASSERT_TRUE(ClickMain("CMDExit"));
    auto question = desktop_.WaitFor(kExitTitle);
    ASSERT_TRUE(question);
    ASSERT_TRUE(Answer(*question, "Return")); // the default button, No
    ASSERT_TRUE(desktop_.WaitGone(*question));
    EXPECT_TRUE(hostwarden_.IsRunning());
    EXPECT_TRUE(desktop_.Exists(*server));
    EXPECT_FALSE(ReadFile(GameFile("events.txt")).contains("closed pid"));

    ASSERT_TRUE(ClickMain("CMDExit"));
    ASSERT_TRUE(question = desktop_.WaitFor(kExitTitle));
    ASSERT_TRUE(Answer(*question, "alt+y"));
    // The launch stored the configuration: no question about saving changes comes.
    EXPECT_TRUE(hostwarden_.WaitForExit(15s)) << "still running; windows: " << Windows();
    EXPECT_TRUE(desktop_.WaitGone(*server)) << "the server window was not closed";
    EXPECT_TRUE(
        WaitUntil([&] { return ReadFile(GameFile("events.txt")).contains("closed pid"); }, 10s));
}

INSTANTIATE_TEST_SUITE_P(ListEntries, Launch, testing::Values("DEFAULT", "Default"));

} // namespace
