// The operator's journeys through the main window: the first start (backup warning, Setup,
// the first-run configuration) and later starts, minimizing, launching the stand-in server
// and leaving the program.
#include "Journey.h"

#include <QFile>
#include <QRegularExpression>

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
    EXPECT_TRUE(desktop_.Run("xwininfo", {"-id", QString::number(main_)})
                    .value_or("")
                    .contains(QRegularExpression("Width: 791\\s+Height: 504")))
        << "not the form's size";
    const QStringList startup = Section("Startup"), defaults = Section("Default");
    EXPECT_TRUE(startup.contains("HasRunSetup=1")) << startup.join('\n');
    EXPECT_TRUE(startup.contains("RFLocation=" + GameDir())) << startup.join('\n');
    for (const QString& line : kFirstRunDefaults + QStringList{"Text2=", "Text3="})
        EXPECT_TRUE(defaults.contains(line)) << line << " missing from:\n" << defaults.join('\n');
    EXPECT_EQ(Section("ConfName"), QStringList({"ConfCount=1", "Conf1=DEFAULT"}));
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
    const QStringList stored = Section("Default");
    for (const QString& line :
         QStringList{"name=" + entry, "gametype=CTF", "maxplayers=16", "teamdamage=False",
                     "falldamage=True", "balance=True", "mapcount=0", "Mod=None", "default=1"})
        EXPECT_TRUE(stored.contains(line)) << line << " missing from:\n" << stored.join('\n');

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

// Builds the rotation from the demo game's levels through "Select Maps", by keyboard: for
// each pick ">" and Down. One pick more than the list holds picks its last level twice,
// which shows where the list ends. Cancel drops the picks; OK appends them after the
// rotation there was; the stored configuration and the options file follow.
TEST_F(Journey, MapSelectionBuildsTheRotationFromTheDemoGame) {
    Seed(LaterRun{});
    QByteArray settings = Settings();
    Seed(settings.replace("MapCount=0", "MapCount=1\nmap0=ctf05.rfl"));
    hostwarden_ = StartHostwarden();
    ASSERT_TRUE(main_ = desktop_.WaitFor(kMainTitle, 30s).value_or(0));

    std::optional<WindowId> dialog;
    const auto open = [&] {
        ASSERT_TRUE(ClickMain("CMDAddMap"));
        ASSERT_TRUE(dialog = desktop_.WaitFor("Select Maps")) << Windows();
    };
    const auto pick = [&](int count, const char* source = nullptr) {
        if (source)
            ASSERT_TRUE(Click(*dialog, "ShippedMaps", source));
        // From a source button, Tab goes round to the list of available maps. The list
        // takes the focus without selecting its first entry; Down and Home select it.
        QStringList keys = {source ? "Tab" : "Home", "Down", "Home"};
        for (int i = 0; i < count; ++i)
            keys << "Tab"
                 << "space"
                 << "shift+Tab"
                 << "Down";
        ASSERT_TRUE(desktop_.Activate(*dialog) &&
                    desktop_.Run("xdotool", QStringList{"key", "--delay", "20", "--"} + keys));
    };
    const auto close = [&](const char* button) {
        ASSERT_TRUE(Click(*dialog, "ShippedMaps", button));
        ASSERT_TRUE(desktop_.WaitGone(*dialog));
    };
    const auto numbered = [](const char* prefix, int last) {
        QStringList levels;
        for (int i = 1; i <= last; ++i)
            levels << QStringLiteral("%1%2.rfl").arg(prefix).arg(i, 2, 10, QLatin1Char('0'));
        return levels << levels.last();
    };

    // CTF, the stock levels and then the CTF packs' in name order, after the rotation.
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(pick(3));
    ASSERT_NO_FATAL_FAILURE(close("CMDCancel"));
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(pick(8));
    ASSERT_NO_FATAL_FAILURE(pick(4, "CMDCustom"));
    ASSERT_NO_FATAL_FAILURE(close("CMDOK"));
    ASSERT_TRUE(ClickMain("CMDSave"));
    for (const auto& [title, keys] :
         {std::pair{"Save Configuration", "alt+y"}, std::pair{"Configuration Saved", "Return"}}) {
        const auto box = desktop_.WaitFor(title);
        ASSERT_TRUE(box && Answer(*box, keys)) << title << "; windows: " << Windows();
        ASSERT_TRUE(desktop_.WaitGone(*box));
    }
    const QStringList ctf =
        QStringList{"ctf05.rfl"} + numbered("ctf", 7) +
        QStringList{"ctf_tower.rfl", "ctf_bridge.rfl", "ctf_canyon.rfl", "ctf_canyon.rfl"};
    const QStringList stored = Section("Default");
    EXPECT_TRUE(stored.contains("mapcount=" + QString::number(ctf.size()))) << stored.join('\n');
    for (int i = 0; i < ctf.size(); ++i)
        EXPECT_TRUE(stored.contains(QStringLiteral("map%1=%2").arg(i).arg(ctf[i])))
            << ctf[i] << " missing from:\n"
            << stored.join('\n');

    // DM empties the rotation; its catalogue is the DM levels, then the DM packs'.
    ASSERT_TRUE(ClickMain("OPTDM"));
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(pick(21));
    ASSERT_NO_FATAL_FAILURE(pick(6, "CMDCustom"));
    ASSERT_NO_FATAL_FAILURE(close("CMDOK"));
    ASSERT_TRUE(ClickMain("CMDLaunch"));
    ASSERT_TRUE(desktop_.WaitFor(kServerTitle)) << Windows();
    QByteArray maps;
    for (const QString& level :
         numbered("dm", 20) + QStringList{"dm_arena.rfl", "dm_warehouse.rfl", "dm_sewers.rfl",
                                          "dm_arena.rfl", "dm_yard.rfl", "dm_yard.rfl"})
        maps += "$Map:            \"" + level.toUtf8() + "\"\r\n";
    const QByteArray written = ReadFile(GameFile("dedicated_server.txt"));
    EXPECT_TRUE(written.endsWith("$Balance Teams:  True\r\n" + maps)) << written.toStdString();
}

} // namespace
