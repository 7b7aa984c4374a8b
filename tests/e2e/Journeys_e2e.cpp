// The operator's journeys through the main window: the first start (backup warning, Setup,
// the first-run configuration) and later starts, minimizing, launching the stand-in server
// and leaving the program.
#include "Journey.h"

#include <QFile>

#include <algorithm>

#include <sys/stat.h>

using namespace e2e;

namespace {

// The warning's Cancel ends the program and stores nothing; its OK leads to Setup, where
// Browse finds the game directory: a folder without RF.EXE cannot be taken, the game's can.
// Setup's OK stores the first-run configuration and opens the main window. A later start goes
// straight to the main window and keeps the operator's own values.
TEST_F(Journey, FirstRunWarningSetupAndALaterStart) {
    const QByteArray seeded = "";
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
    ASSERT_TRUE(Click(*setup, "Setup", "CMDBrowse"));
    const auto browse = desktop_.WaitFor("Browse");
    // The folder list opens at the home, which holds "config" and the game.
    ASSERT_TRUE(browse && Answer(*browse, "Tab") && desktop_.Run("xdotool", {"type", "config"}))
        << Windows();
    ASSERT_TRUE(Click(*browse, "Browse", "CMDOK"));
    EXPECT_FALSE(desktop_.WaitGone(*browse, 1s)) << "OK taken in a folder without RF.EXE";
    EXPECT_FALSE(desktop_.Find(kMainTitle)) << "Setup's OK is disabled without a directory";
    ASSERT_TRUE(desktop_.Run("xdotool", {"type", "game"}));
    ASSERT_TRUE(Click(*browse, "Browse", "CMDOK"));
    ASSERT_TRUE(desktop_.WaitGone(*browse)) << "OK not taken in the game directory";
    ASSERT_TRUE(Click(*setup, "Setup", "CMDOK"));
    main_ = desktop_.WaitFor(kMainTitle).value_or(0);
    ASSERT_TRUE(main_) << "Setup's OK did not lead on; windows: " << Windows();
    EXPECT_TRUE(desktop_.WaitGone(*setup)) << "Setup stays after its OK";
    const QStringList startup = Section("Startup");
    EXPECT_TRUE(startup.contains("HasRunSetup=1"));
    EXPECT_TRUE(std::any_of(startup.begin(), startup.end(), [](const QString& line) {
        return line.startsWith("RFLocation=/") && line.endsWith("game/");
    })) << startup.join(' ').toStdString();
    // The main window shows DEFAULT: its Launch starts the server with that configuration.
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    ASSERT_TRUE(WaitUntil([&] { return !GameLines("commandline.txt").isEmpty(); }, 20s));
    EXPECT_EQ(GameLines("commandline.txt").mid(1).join(' '), "-dedicated DEFAULT");
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
}

// New takes a typed name without its blanks, in capitals; Copy carries the fields but not the
// mod; Delete renumbers the list. A mod picked in the Mods dialog ends the next launch's command
// line; Remove drops it again.
TEST_F(Journey, ConfigurationListAndMods) {
    ASSERT_NO_FATAL_FAILURE(StartMain());
    ASSERT_TRUE(ClickMain("CMDNew"));
    auto name = desktop_.WaitFor("Name?");
    EXPECT_TRUE(
        name &&
        desktop_.Run("xprop", {"-id", QString::number(*name)})->contains("WM_TRANSIENT_FOR"))
        << "NewConf has no taskbar entry of its own";
    ASSERT_TRUE(name && desktop_.Activate(*name) && desktop_.Run("xdotool", {"type", "test 1"}) &&
                desktop_.Key("Return"));
    ASSERT_TRUE(desktop_.WaitGone(*name));
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=2", "Conf1=DEFAULT", "Conf2=TEST1"}));
    const QStringList test1 = Section("TEST1");
    EXPECT_TRUE(test1.contains("servname=$Me's Dedicated CTF running Hostwarden 2.0"))
        << test1.join('\n');

    ASSERT_TRUE(ClickMain("CMDCopy"));
    auto copy = desktop_.WaitFor("Copy TEST1 to:");
    ASSERT_TRUE(copy && Click(*copy, "CopyConfig", "TXTNewName") &&
                desktop_.Run("xdotool", {"type", "copy"}) && desktop_.Key("Return"));
    ASSERT_TRUE(desktop_.WaitGone(*copy));
    const QStringList copied = Section("COPY");
    EXPECT_EQ(copied.size(), test1.size() - 1) << "every field but the mod";
    EXPECT_TRUE(copied.contains("name=COPY") && copied.contains(test1.filter("servname=")[0]) &&
                copied.filter("Mod=").isEmpty())
        << copied.join(';');

    // The list's edit field takes the focus; Up selects the entry before COPY.
    ASSERT_TRUE(ClickMain("LSTConfig") && desktop_.Key("Up") && ClickMain("CMDDelete"));
    auto question = desktop_.WaitFor("Delete Configuration?");
    ASSERT_TRUE(question && Answer(*question, "alt+y"));
    auto notice = desktop_.WaitFor("Settings Deleted");
    ASSERT_TRUE(notice && Answer(*notice, "Return"));
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=2", "Conf1=DEFAULT", "Conf2=COPY"}));
    EXPECT_TRUE(Section("TEST1").isEmpty());

    // Demo mods: Classic and Rocketball hold packages; EmptyMod and Nested do not. The list
    // takes the focus on its first entry, unselected.
    for (const auto& [keys, mod] :
         {std::pair{"Down Down", "Rocketball"}, {"Down Up", "Classic"}, {"", "None"}}) {
        ASSERT_TRUE(ClickMain(*keys ? "CMDMod" : "CMDRemovemod"));
        const auto mods = desktop_.WaitFor("Select a mod from the list", *keys ? 20s : 0s);
        for (const QString& key : QString(keys).split(' ', Qt::SkipEmptyParts))
            ASSERT_TRUE(mods && desktop_.Activate(*mods) && desktop_.Key(key));
        ASSERT_TRUE(!*keys || (Click(*mods, "Mods", "CMDOK") && desktop_.WaitGone(*mods)));
        QFile::remove(GameFile("commandline.txt"));
        ASSERT_TRUE(ClickMain("CMDLaunch"));
        ASSERT_TRUE(WaitUntil([&] { return !GameLines("commandline.txt").isEmpty(); }, 20s));
        EXPECT_EQ(GameLines("commandline.txt").mid(1).join(' '),
                  QString("-dedicated DEFAULT") + (*keys ? QString(" -mod ") + mod : ""));
    }
}

class Launch : public Journey, public testing::WithParamInterface<const char*> {};

// The launch stores the configuration under its list entry before it builds the command
// line, so the server is started with the entry's spelling. Exit answered Yes closes the
// server and ends the program (answered No, see the questions journey of the messages).
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
    const auto question = desktop_.WaitFor(kExitTitle);
    ASSERT_TRUE(question);
    ASSERT_TRUE(Answer(*question, "alt+y"));
    // The launch stored the configuration: no question about saving changes comes.
    EXPECT_TRUE(hostwarden_.WaitForExit(15s)) << "still running; windows: " << Windows();
    EXPECT_TRUE(desktop_.WaitGone(*server)) << "the server window was not closed";
    EXPECT_TRUE(
        WaitUntil([&] { return ReadFile(GameFile("events.txt")).contains("closed pid"); }, 10s));
}

INSTANTIATE_TEST_SUITE_P(ListEntries, Launch, testing::Values("DEFAULT", "Default"));

// A FIFO as settings file gives "Settings Error"; a huge ConfCount still opens the window; 320
// typed port digits stay; Minimize iconifies the window and a second start brings it forward;
// a dead one blocks nothing.
TEST_F(Journey, HandEditsAndASecondStartAreSurvived) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(SettingsFile()).constData(), 0600), 0);
    hostwarden_ = StartHostwarden();
    const auto refused = desktop_.WaitFor("Settings Error", 10s);
    ASSERT_TRUE(refused) << "windows: " << Windows();
    ASSERT_TRUE(Answer(*refused, "Return"));
    EXPECT_TRUE(hostwarden_.WaitForExit(10s));
    ASSERT_TRUE(QFile::remove(SettingsFile()));

    Seed(LaterRun{});
    Seed(Settings().replace("ConfCount=1", "ConfCount=999999999"));
    hostwarden_ = StartHostwarden();
    main_ = desktop_.WaitFor(kMainTitle, 5s).value_or(0);
    ASSERT_NE(main_, 0u) << "no main window within 5 s; windows: " << Windows();

    const QString digits(320, u'7');
    ASSERT_TRUE(ClickMain("CHKPort") && ClickMain("TXTPort"));
    ASSERT_TRUE(desktop_.Run("xdotool", {"type", "--delay", "2", digits}));
    EXPECT_TRUE(WaitUntil([&] { return Section("Startup").contains("PortNum=" + digits); }, 10s));
    const auto iconic = [&] {
        const QString state =
            desktop_.Run("xprop", {"-id", QString::number(main_), "_NET_WM_STATE", "WM_STATE"})
                .value_or("");
        return state.contains("_NET_WM_STATE_HIDDEN") && state.contains("Iconic");
    };
    ASSERT_FALSE(iconic());
    ASSERT_TRUE(ClickMain("CMDMin"));
    ASSERT_TRUE(WaitUntil(iconic, 10s)) << "Minimize did not iconify the main window";
    Process second = StartHostwarden();
    EXPECT_TRUE(second.WaitForExit(10s));
    // It comes forward only if its window still answers after the digits.
    EXPECT_TRUE(WaitUntil([&] { return desktop_.Active() == main_; }, 10s));
    EXPECT_EQ(desktop_.Titles().count(kMainTitle), 1) << Windows();
    ASSERT_TRUE(hostwarden_.IsRunning());

    hostwarden_.Stop(); // SIGTERM: no handler runs, the socket file stays
    hostwarden_ = StartHostwarden();
    EXPECT_TRUE(desktop_.WaitFor(kMainTitle, 10s)) << "windows: " << Windows();
}

// Builds the rotation through "Select Maps" by keyboard, ">" then Down a pick: one pick more
// than a list holds picks its last level twice, showing where it ends. Cancel drops the picks,
// OK appends them to the rotation, Launch writes it. The list takes the focus (Tab reaches it
// from "Custom Maps") with nothing selected; Down and Home select the first entry. The count
// label, which no X property holds, is read as a screen reader reads it.
TEST_F(Journey, MapSelectionBuildsTheRotationFromTheDemoGame) {
    Seed(LaterRun{});
    Seed(Settings().replace("MapCount=0", "MapCount=1\nmap0=ctf05.rfl"));
    hostwarden_ = StartHostwarden();
    ASSERT_TRUE(main_ = desktop_.WaitFor(kMainTitle, 30s).value_or(0));
    const auto select = [&](int stock, int custom, const char* close) {
        ASSERT_TRUE(desktop_.Activate(main_) && ClickMain("CMDAddMap"));
        const auto dialog = desktop_.WaitFor("Select Maps");
        ASSERT_TRUE(dialog) << Windows();
        for (const int source : {0, 1}) {
            ASSERT_TRUE(!source || Click(*dialog, "ShippedMaps", "CMDCustom"));
            QStringList keys = {source ? "Tab" : "Home", "Down", "Home"};
            for (int i = 0; i < (source ? custom : stock); ++i)
                keys += QStringList{"Tab", "space", "shift+Tab", "Down"};
            ASSERT_TRUE(desktop_.Activate(*dialog) &&
                        desktop_.Run("xdotool", QStringList{"key", "--delay", "20", "--"} + keys));
        }
        ASSERT_TRUE(Click(*dialog, "ShippedMaps", close) && desktop_.WaitGone(*dialog));
    };
    const auto launchWrites = [&](QStringList levels) {
        ASSERT_TRUE(desktop_.Activate(main_) && ClickMain("CMDLaunch"));
        // The server's window takes the focus when it comes, so it must be there before more keys.
        ASSERT_TRUE(desktop_.WaitFor(kServerTitle)) << Windows();
        QByteArray maps = "$Balance Teams:  True\r\n";
        for (const QString& level : levels)
            maps += "$Map:            \"" + level.toUtf8() + "\"\r\n";
        const auto written = [&] { return ReadFile(GameFile("dedicated_server.txt")); };
        EXPECT_TRUE(WaitUntil([&] { return written().endsWith(maps); }, 10s)) << written().data();
    };
    const auto countShows = [&](const QString& caption) {
        return WaitUntil(
            [&] {
                const auto labels = desktop_.Run(ACCESSIBLE, {"labels", kMainTitle});
                return labels && labels->split('\n').contains(caption);
            },
            10s);
    };
    const auto numbered = [](const char* prefix, int last) {
        QStringList levels;
        for (int i = 1; i <= last; ++i)
            levels << QStringLiteral("%1%2.rfl").arg(prefix).arg(i, 2, 10, QLatin1Char('0'));
        return levels << levels.last();
    };

    ASSERT_NO_FATAL_FAILURE(select(3, 1, "CMDCancel"));
    EXPECT_TRUE(countShows("1 Maps"));
    ASSERT_NO_FATAL_FAILURE(select(8, 4, "CMDOK"));
    EXPECT_TRUE(countShows("13 Maps"));
    launchWrites(
        QStringList{"ctf05.rfl"} + numbered("ctf", 7) +
        QStringList{"ctf_tower.rfl", "ctf_bridge.rfl", "ctf_canyon.rfl", "ctf_canyon.rfl"});
    // The new console may still take the focus back from the main window for a moment.
    ASSERT_TRUE(WaitUntil([&] { return desktop_.Activate(main_) && ClickMain("OPTDM"); }, 15s))
        << "empties the rotation";
    EXPECT_TRUE(countShows("0 Maps"));
    ASSERT_NO_FATAL_FAILURE(select(21, 6, "CMDOK"));
    EXPECT_TRUE(countShows("27 Maps"));
    launchWrites(numbered("dm", 20) + QStringList{"dm_arena.rfl", "dm_warehouse.rfl",
                                                  "dm_sewers.rfl", "dm_arena.rfl", "dm_yard.rfl",
                                                  "dm_yard.rfl"});
}

} // namespace
