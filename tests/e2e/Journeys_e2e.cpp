// The operator's journeys through the main window: the first start (backup warning,
// Setup, the first-run configuration) and later starts, launching the stand-in server,
// leaving the program and minimizing it.
#include "Journey.h"

#include <QFile>
#include <QSet>

#include <utility>

using namespace e2e;

namespace {

using FirstRun = Journey;

TEST_F(FirstRun, WarningAndSetupStoreTheDefaultsAndALaterStartGoesStraightToTheMainWindow) {
    Seed("[Startup]\nRFLocation=" + GameDir().toUtf8() + "\n");
    hostwarden_ = StartHostwarden();
    const auto warning = desktop_.WaitForWindow("Warning");
    ASSERT_TRUE(warning) << "no warning; windows: " << Windows();
    EXPECT_FALSE(desktop_.FindWindow("Setup")) << "Setup is shown only after the warning";
    ASSERT_TRUE(Answer(*warning, "Return"));
    const auto setup = desktop_.WaitForWindow("Setup");
    ASSERT_TRUE(setup) << "no Setup window after the warning's OK";
    // OK counts as enabled when clicking it leads on to the main window.
    ASSERT_TRUE(Click(*setup, "Setup", "CMDOK"));
    const auto main = desktop_.WaitForWindow(kMainTitle);
    ASSERT_TRUE(main) << "OK of Setup did not lead on; windows: " << Windows();
    EXPECT_TRUE(desktop_.WaitForWindowGone(*setup)) << "Setup stays after its OK";

    const QStringList startup = Section("Startup");
    EXPECT_TRUE(startup.contains("HasRunSetup=1")) << startup.join('\n');
    EXPECT_TRUE(startup.contains("RFLocation=" + GameDir())) << startup.join('\n');
    const QStringList defaults = Section("Default");
    for (const QString& line : kFirstRunDefaults + QStringList{"Text2=", "Text3="})
        EXPECT_TRUE(defaults.contains(line)) << line << " missing from:\n" << defaults.join('\n');
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=1", "Conf1=DEFAULT"}));

    // The window's picture, once it has stopped changing (it may still be painting right
    // after it maps), has the size of the form.
    QByteArray previous;
    WaitUntil(
        [&] {
            const QByteArray now = ReadFile(desktop_.Screenshot("main-window", *main));
            return !now.isEmpty() && std::exchange(previous, now) == now;
        },
        10s, 200ms);
    const ToolResult size =
        RunTool("identify", {"-format", "%w x %h", ArtifactPath("main-window.png")});
    EXPECT_EQ(size.out.trimmed(), "791 x 504");
    ASSERT_TRUE(hostwarden_.IsRunning());
    hostwarden_.Stop();

    // An operator's own value must survive: a later start creates no defaults again.
    QByteArray settings = Settings();
    ASSERT_TRUE(settings.contains("\nmaxplayers=16\n"));
    Seed(settings.replace("\nmaxplayers=16\n", "\nmaxplayers=12\n"));
    hostwarden_ = StartHostwarden();
    QSet<QString> seen;
    ASSERT_TRUE(WaitUntil(
        [&] {
            const QStringList titles = desktop_.WindowTitles();
            seen.unite(QSet<QString>(titles.begin(), titles.end()));
            return titles.contains(kMainTitle);
        },
        20s))
        << "no main window; windows: " << Windows();
    EXPECT_FALSE(seen.contains("Warning"));
    EXPECT_FALSE(seen.contains("Setup"));
    EXPECT_TRUE(Section("Default").contains("maxplayers=12"));
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=1", "Conf1=DEFAULT"}));
    EXPECT_TRUE(hostwarden_.IsRunning());
}

TEST_F(FirstRun, WarningCancelEndsTheProgramAndStoresNothing) {
    const QByteArray seeded = "[Startup]\nRFLocation=" + GameDir().toUtf8() + "\n";
    Seed(seeded);
    hostwarden_ = StartHostwarden();
    const auto warning = desktop_.WaitForWindow("Warning");
    ASSERT_TRUE(warning);
    // Escape answers Cancel on an OK/Cancel box.
    ASSERT_TRUE(Answer(*warning, "Escape"));
    EXPECT_TRUE(hostwarden_.WaitForExit(10s).has_value());
    EXPECT_FALSE(desktop_.FindWindow("Setup"));
    EXPECT_EQ(Settings(), seeded);
}

class Launch : public Journey, public testing::WithParamInterface<const char*> {};

// The launch stores the configuration under its list entry before it builds the command
// line, so the server is started with the entry's spelling. Exit answered No keeps
// everything running; answered Yes, it closes the server and ends the program.
TEST_P(Launch, WritesTheOptionsStartsTheServerStoresAndExitClosesIt) {
    const QString entry = GetParam();
    ASSERT_NO_FATAL_FAILURE(StartMain({.listEntry = entry}));
    ASSERT_FALSE(desktop_.FindWindow(kServerTitle));
    ASSERT_FALSE(QFile::exists(GameFile("dedicated_server.txt")));

    ASSERT_TRUE(ClickMain("CMDLaunch"));

    const auto server = desktop_.WaitForWindow(kServerTitle);
    ASSERT_TRUE(server) << "no server window; windows: " << Windows();
    EXPECT_EQ(ReadFile(GameFile("dedicated_server.txt")), kFirstRunOptions);
    const QStringList arguments = GameLines("commandline.txt");
    ASSERT_FALSE(arguments.isEmpty());
    EXPECT_TRUE(arguments[0].endsWith("/RF.EXE")) << arguments[0];
    EXPECT_EQ(arguments.mid(1), QStringList({"-dedicated", entry}));
    const QStringList stored = Section("Default");
    for (const QString& line : {"name=" + entry, QString("gametype=CTF"), QString("maxplayers=16"),
                                QString("teamdamage=False"), QString("falldamage=True"),
                                QString("balance=True"), QString("mapcount=0"),
                                QString("Mod=None"), QString("default=1")})
        EXPECT_TRUE(stored.contains(line)) << line << " missing from:\n" << stored.join('\n');

    ASSERT_TRUE(ClickMain("CMDExit"));
    auto question = desktop_.WaitForWindow(kExitTitle);
    ASSERT_TRUE(question);
    // Return takes the default button, No.
    ASSERT_TRUE(Answer(*question, "Return"));
    ASSERT_TRUE(desktop_.WaitForWindowGone(*question));
    EXPECT_TRUE(hostwarden_.IsRunning());
    EXPECT_TRUE(desktop_.WindowExists(*server));
    EXPECT_FALSE(ReadFile(GameFile("events.txt")).contains("closed pid"));

    ASSERT_TRUE(ClickMain("CMDExit"));
    question = desktop_.WaitForWindow(kExitTitle);
    ASSERT_TRUE(question);
    // Yes is chosen by its own key.
    ASSERT_TRUE(Answer(*question, "alt+y"));
    // The launch stored the configuration, so no question about changed values follows;
    // should one come, answer it so the rest can still be seen.
    bool askedToSave = false;
    ASSERT_TRUE(WaitUntil(
        [&] {
            const auto again = hostwarden_.IsRunning() ? desktop_.FindWindow(kExitTitle)
                                                       : std::nullopt;
            if (again && *again != *question && !askedToSave) {
                askedToSave = true;
                Answer(*again, "alt+n");
            }
            return !hostwarden_.IsRunning();
        },
        15s, 50ms))
        << "hostwarden did not end";
    EXPECT_FALSE(askedToSave) << "asked to save a configuration the launch had stored";
    EXPECT_TRUE(desktop_.WaitForWindowGone(*server)) << "the server window was not closed";
    EXPECT_TRUE(
        WaitUntil([&] { return ReadFile(GameFile("events.txt")).contains("closed pid"); }, 10s));
}

INSTANTIATE_TEST_SUITE_P(ListEntries, Launch, testing::Values("DEFAULT", "Default"));

TEST_F(Journey, MinimizeIconifiesTheMainWindow) {
    ASSERT_NO_FATAL_FAILURE(StartMain());
    const auto iconic = [&] {
        const QString state =
            desktop_.Run("xprop", {"-id", QString::number(main_), "_NET_WM_STATE", "WM_STATE"}).out;
        return state.contains("_NET_WM_STATE_HIDDEN") && state.contains("Iconic");
    };
    ASSERT_FALSE(iconic());
    ASSERT_TRUE(ClickMain("CMDMin"));
    EXPECT_TRUE(WaitUntil(iconic, 10s)) << "not iconic";
    EXPECT_TRUE(hostwarden_.IsRunning());
}

} // namespace
