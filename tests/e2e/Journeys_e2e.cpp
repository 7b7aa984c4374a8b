// The operator's journeys through the main window, from the first run to the packaged program.
#include "Journey.h"

#include <QFile>

#include <sys/stat.h>

using namespace e2e;

namespace {

// About and "Fix Reg" answered Yes, then the first run that follows: the warning, Setup and
// Browse, which takes the game directory and not a folder without RF.EXE. Launch, then Exit
// answered Yes, which closes the server without asking to save: the launch stored the
// configuration. A later start edits the configuration list and mods. Each window is left in
// e2e-artifacts/window-<form>.png.
TEST_F(Journey, FromAboutThroughAFirstRunToTheConfigurationList) {
    const auto shoot = [&](WindowId window, const QString& form) {
        desktop_.Run("import", {"-frame", "-window", QString::number(window),
                                "png:" + ArtifactPath("window-" + form + ".png")});
    };
    ASSERT_NO_FATAL_FAILURE(StartMain());
    shoot(main_, "Hostwarden");
    const struct {
        const char *opener, *title, *form, *closer;
    } dialogs[] = {{"CMDMod", "Select a mod from the list", "Mods", "CMDCancel"},
                   {"CMDNew", "Name?", "NewConf", "CMDCancel"},
                   {"CMDCopy", "Copy DEFAULT to:", "CopyConfig", "CMDCancel"},
                   {"CMDTextRate", "Set Text Rate", "Text_Rate", "Command2"},
                   {"CMDMsgRate", "Message Rate", "MsgRate", "CMDCancel"},
                   {"CMDAddMap", "Select Maps", "ShippedMaps", "CMDCancel"},
                   {"CMDAbout", "About-Help", "About", nullptr}};
    for (const auto& d : dialogs) {
        ASSERT_TRUE(ClickMain(d.opener));
        const auto window = desktop_.WaitFor(d.title);
        ASSERT_TRUE(window) << d.title << " missing; windows: " << Windows();
        shoot(*window, d.form);
        ASSERT_TRUE(!d.closer || (Click(*window, d.form, d.closer) && desktop_.WaitGone(*window)));
    }
    auto about = desktop_.Find("About-Help");
    ASSERT_TRUE(ClickMain("CMDExit"));
    EXPECT_FALSE(desktop_.WaitFor(kExitTitle, 1s)) << "the main window took a click";
    ASSERT_TRUE(Click(*about, "About", "Text1") && desktop_.Key("ctrl+a") &&
                desktop_.Key("ctrl+c"));
    QStringList lines;
    WaitUntil([&] { return (lines = Clipboard().split('\n')).size() > 1; }, 5s);
    ASSERT_EQ(lines.size(), 28) << "27 lines, the last ended too";
    EXPECT_EQ(lines[0], "Hostwarden 2.0 by Velloquin");
    EXPECT_EQ(lines[22], "Note This");
    EXPECT_TRUE(lines[23].startsWith("If you wish to use the Server Recovery option you MUST use "
                                     "AutoMessages."));
    ASSERT_TRUE(Click(*about, "About", "CMDOK") && desktop_.WaitGone(*about));
    ASSERT_TRUE(ClickMain("CMDExit") && Answer(kExitTitle, "Return"))
        << "the main window takes no input";

    ASSERT_TRUE(ClickMain("CMDAbout") && (about = desktop_.WaitFor("About-Help")));
    ASSERT_TRUE(Click(*about, "About", "CMDReset"));
    ASSERT_TRUE(Answer("Reset Application Registry Entries?", "alt+y"));
    EXPECT_TRUE(hostwarden_.WaitForExit(10s)) << Windows();
    const QByteArray emptied = Settings();
    EXPECT_EQ(emptied.trimmed(), "");

    hostwarden_ = StartHostwarden();
    ASSERT_TRUE(Answer("Warning", "Escape")); // Cancel
    EXPECT_TRUE(hostwarden_.WaitForExit(10s));
    EXPECT_FALSE(desktop_.Find("Setup"));
    EXPECT_EQ(Settings(), emptied);
    hostwarden_ = StartHostwarden();
    const auto warning = desktop_.WaitFor("Warning");
    ASSERT_TRUE(warning);
    EXPECT_FALSE(desktop_.Find("Setup")) << "Setup is shown only after the warning";
    ASSERT_TRUE(Answer(*warning, "Return"));
    const auto setup = desktop_.WaitFor("Setup");
    ASSERT_TRUE(setup);
    shoot(*setup, "Setup");
    ASSERT_TRUE(Click(*setup, "Setup", "CMDOK") && Click(*setup, "Setup", "CMDBrowse"));
    const auto browse = desktop_.WaitFor("Browse");
    ASSERT_TRUE(browse);
    shoot(*browse, "Browse");
    ASSERT_TRUE(Click(*setup, "Setup", "CMDBrowse")); // beside Browse, on the disabled Setup
    EXPECT_TRUE(WaitUntil([&] { return desktop_.Active() == browse; }, 5s)) << "Browse in front";
    // The folder list opens at the home, which holds "config" and the game.
    ASSERT_TRUE(Answer(*browse, "Tab") && desktop_.Type("config"));
    ASSERT_TRUE(Click(*browse, "Browse", "CMDOK"));
    EXPECT_FALSE(desktop_.WaitGone(*browse, 1s)) << "OK taken in a folder without RF.EXE";
    EXPECT_FALSE(desktop_.Find(kMainTitle)) << "Setup's OK is disabled without a directory";
    ASSERT_TRUE(desktop_.Type("game"));
    ASSERT_TRUE(Click(*browse, "Browse", "CMDOK") && desktop_.WaitGone(*browse));
    ASSERT_TRUE(Click(*setup, "Setup", "CMDOK"));
    ASSERT_TRUE(main_ = desktop_.WaitFor(kMainTitle).value_or(0)) << Windows();
    EXPECT_TRUE(desktop_.WaitGone(*setup)) << "Setup stays after its OK";
    const QStringList startup = Section("Startup");
    EXPECT_TRUE(startup.contains("HasRunSetup=1") &&
                startup.filter(QRegularExpression("^RFLocation=/.*/game/$")).size() == 1)
        << startup.join(' ');

    // The main window shows DEFAULT.
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    const auto server = desktop_.WaitFor(kServerTitle);
    ASSERT_TRUE(server) << Windows();
    EXPECT_EQ(GameLines("commandline.txt").mid(1), QStringList({"-dedicated", "DEFAULT"}));
    ASSERT_TRUE(ClickMain("CMDExit") && Answer(kExitTitle, "alt+y"));
    EXPECT_TRUE(hostwarden_.WaitForExit(15s)) << "still running; windows: " << Windows();
    EXPECT_TRUE(desktop_.WaitGone(*server)) << "the server window was not closed";
    EXPECT_TRUE(
        WaitUntil([&] { return ReadFile(GameFile("events.txt")).contains("closed pid"); }, 10s));

    hostwarden_ = StartHostwarden();
    // The main window comes only without the first run's boxes, which wait for an answer.
    ASSERT_TRUE(main_ = desktop_.WaitFor(kMainTitle).value_or(0)) << Windows();

    // New takes a typed name without its blanks, in capitals; Copy carries the fields but not
    // the mod; Delete renumbers the list.
    ASSERT_TRUE(ClickMain("CMDNew"));
    auto name = desktop_.WaitFor("Name?");
    ASSERT_TRUE(name && desktop_.Activate(*name) && desktop_.Type("test 1"));
    EXPECT_TRUE(desktop_.Properties(*name).contains("WM_TRANSIENT_FOR"))
        << "NewConf has no taskbar entry of its own";
    ASSERT_TRUE(desktop_.Key("Return") && desktop_.WaitGone(*name));
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=2", "Conf1=DEFAULT", "Conf2=TEST1"}));
    const QStringList test1 = Section("TEST1");
    EXPECT_TRUE(test1.contains("servname=$Me's Dedicated CTF running Hostwarden 2.0"))
        << test1.join('\n');

    ASSERT_TRUE(ClickMain("CMDCopy"));
    auto copy = desktop_.WaitFor("Copy TEST1 to:");
    ASSERT_TRUE(copy && Click(*copy, "CopyConfig", "TXTNewName") && desktop_.Type("copy") &&
                desktop_.Key("Return"));
    ASSERT_TRUE(desktop_.WaitGone(*copy));
    const QStringList copied = Section("COPY");
    EXPECT_EQ(copied.size(), test1.size() - 1) << "every field but the mod";
    EXPECT_TRUE(copied.contains("name=COPY") && copied.contains(test1.filter("servname=")[0]) &&
                copied.filter("Mod=").isEmpty())
        << copied.join(';');

    // The list's edit field takes the focus; Up selects the entry before COPY.
    ASSERT_TRUE(ClickMain("LSTConfig") && desktop_.Key("Up") && ClickMain("CMDDelete"));
    ASSERT_TRUE(Answer("Delete Configuration?", "alt+y") && Answer("Settings Deleted", "Return"));
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=2", "Conf1=DEFAULT", "Conf2=COPY"}));
    EXPECT_TRUE(Section("TEST1").isEmpty());

    // Of the demo mods only Classic and Rocketball hold packages, EmptyMod and Nested do not.
    // The list takes the focus on its first entry, unselected.
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

// A FIFO as settings file gives "Settings Error"; a huge ConfCount still opens the window; 320
// typed port digits stay; Minimize iconifies the window and a second start brings it forward;
// a dead one blocks nothing.
TEST_F(Journey, HandEditsAndASecondStartAreSurvived) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(SettingsFile()).constData(), 0600), 0);
    hostwarden_ = StartHostwarden();
    ASSERT_TRUE(Answer("Settings Error", "Return"));
    EXPECT_TRUE(hostwarden_.WaitForExit(10s));
    ASSERT_TRUE(QFile::remove(SettingsFile()));

    Seed(LaterRun{});
    Seed(Settings().replace("ConfCount=1", "ConfCount=999999999"));
    hostwarden_ = StartHostwarden();
    ASSERT_TRUE(main_ = desktop_.WaitFor(kMainTitle, 5s).value_or(0)) << Windows();

    const QString digits(320, u'7');
    ASSERT_TRUE(ClickMain("CHKPort") && ClickMain("TXTPort"));
    ASSERT_TRUE(desktop_.Run("xdotool", {"type", "--delay", "2", digits}));
    EXPECT_TRUE(WaitUntil([&] { return Section("Startup").contains("PortNum=" + digits); }, 10s));
    const auto iconic = [&] {
        const QString state = desktop_.Properties(main_, {"_NET_WM_STATE", "WM_STATE"});
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
    EXPECT_TRUE(desktop_.WaitFor(kMainTitle, 10s)) << Windows();
}

// Picks by keyboard, ">" then Down a pick: one pick more than a list holds picks its last level
// twice, showing where it ends. The list takes the focus (Tab reaches it from "Custom Maps")
// with nothing selected; Down and Home select the first entry. The count label, which no X
// property holds, is read as a screen reader reads it.
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
        const auto labels = [&] { return desktop_.Run(ACCESSIBLE, {"labels", kMainTitle}); };
        return WaitUntil([&] { return labels().value_or("").split('\n').contains(caption); }, 10s);
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

// The Debian package unpacked into a throw-away root, never installed here: its demo-game
// command lays out a game, its hostwarden runs on it and launches the packaged stand-in.
TEST_F(Journey, PackagedProgramRunsOnItsDemoGame) {
    QTemporaryDir root;
    ASSERT_TRUE(desktop_.Run("dpkg-deb", {"-x", HOSTWARDEN_DEB, root.path()}));
    Process demo(root.filePath("usr/bin/hostwarden-demo-game"), {gameParent_.filePath("demo")},
                 {"HOME=" + home_.path()});
    ASSERT_TRUE(demo.WaitForExit(30s) && demo.ExitCode() == 0);
    game_ = gameParent_.filePath("demo");
    EXPECT_EQ(demo.Output(), GameDir() + "\n");

    Seed(LaterRun{});
    hostwarden_ = StartHostwarden(std::nullopt, root.filePath("usr/bin/hostwarden"));
    ASSERT_TRUE(main_ = desktop_.WaitFor(kMainTitle, 30s).value_or(0)) << Windows();
    // The desktop shell ties the window to its menu entry through the window class.
    const QString wmClass = desktop_.Properties(main_, {"WM_CLASS"}).section('"', 3, 3);
    EXPECT_TRUE(ReadFile(root.filePath("usr/share/applications/" HOSTWARDEN_APP_ID ".desktop"))
                    .contains("\nStartupWMClass=" + wmClass.toUtf8() + "\n"))
        << wmClass;

    ASSERT_TRUE(ClickMain("CMDLaunch"));
    EXPECT_TRUE(desktop_.WaitFor(kServerTitle)) << Windows();
    EXPECT_TRUE(GameLines("commandline.txt").value(0).startsWith(GameDir())) << "not the demo's";
}

} // namespace
