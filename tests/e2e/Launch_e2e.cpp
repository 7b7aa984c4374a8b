// Launching the server from the main window, leaving the program, and minimizing it:
// the real hostwarden against the stand-in server in a private copy of the demo game.
#include "Desktop.h"
#include "GameCopy.h"
#include "Hostwarden.h"
#include "Seeds.h"
#include "TempHome.h"
#include "XSession.h"

#include <gtest/gtest.h>

#include <QFile>

using namespace e2e;

namespace {

const QString kServerTitle = QStringLiteral("Red Faction Dedicated Server");
const QString kExitTitle = QStringLiteral("Save and exit or just exit");

// Centres of the main window's buttons, client coordinates.
constexpr QPoint kLaunch(136 + 137 / 2, 424 + 65 / 2);
constexpr QPoint kMinimize(696 + 81 / 2, 424 + 17 / 2);
constexpr QPoint kExit(696 + 81 / 2, 472 + 17 / 2);

// What the options text shows for the first-run configuration.
QByteArray FirstRunOptionsFile() {
    return "#Dedicated Server Options\r\n"
           "$Name:           \"Default\"\r\n"
           "$Server Name:    \"$Me's Dedicated CTF Running Hostwarden 2.0\"\r\n"
           "$Game Type:      \"CTF\"\r\n"
           "$Max Players:    16\r\n"
           "$Password:       \"\"\r\n"
           "$Rcon Password:  \"\"\r\n"
           "$Max Time:       30\r\n"
           "$Max Kills:      50\r\n"
           "$Max Captures:   5\r\n"
           "$Geomod Limit:   128\r\n"
           "$Team Damage:    False\r\n"
           "$Fall Damage:    True\r\n"
           "$Weapons Stay:    False\r\n"
           "$Force Respawn:  False\r\n"
           "$Balance Teams:  True\r\n";
}

class LaunchTest : public testing::Test {
protected:
    void Start(const QString& listEntry, const QString& logName) {
        LaterRun run;
        run.rfLocation = game_.GameDir();
        run.listEntry = listEntry;
        home_.WriteSettings(kHostwardenApp, LaterRunSettings(run));
        hostwarden_ = StartHostwarden(session_, home_, logName);
        main_ = desktop_.WaitForWindow(kMainWindowTitle, TitleMatch::Exact, 20s).value_or(0);
        ASSERT_NE(main_, 0u) << "no main window; windows: "
                             << desktop_.WindowTitles().join(", ").toStdString();
    }

    // Answers the box titled `title` by activating it and pressing `keys`.
    bool Answer(WindowId box, const QString& keys) {
        return desktop_.Activate(box) && desktop_.PressKey(keys);
    }

    XSession session_;
    Desktop desktop_{session_};
    TempHome home_;
    GameCopy game_;
    Process hostwarden_;
    WindowId main_ = 0;
};

struct NameCase {
    const char* listEntry;
    const char* label;
};

void PrintTo(const NameCase& c, std::ostream* os) {
    *os << "Conf1=" << c.listEntry;
}

class LaunchName : public LaunchTest, public testing::WithParamInterface<NameCase> {};

// The launch stores the configuration under its list entry before it builds the command
// line, so the server is started with the entry's spelling.
TEST_P(LaunchName, WritesTheOptionsStartsTheServerStoresAndExitClosesIt) {
    const QString entry = GetParam().listEntry;
    ASSERT_NO_FATAL_FAILURE(Start(entry, QString("launch-") + GetParam().label));
    ASSERT_FALSE(desktop_.FindWindow(kServerTitle));
    ASSERT_FALSE(QFile::exists(game_.FilePath("dedicated_server.txt")));

    ASSERT_TRUE(desktop_.Click(main_, kLaunch));

    const auto server = desktop_.WaitForWindow(kServerTitle, TitleMatch::Exact, 20s);
    ASSERT_TRUE(server.has_value())
        << "no server window; windows: " << desktop_.WindowTitles().join(", ").toStdString();
    EXPECT_EQ(game_.Read("dedicated_server.txt").toStdString(),
              FirstRunOptionsFile().toStdString());
    const QStringList arguments = game_.ReadLines("commandline.txt");
    ASSERT_FALSE(arguments.isEmpty());
    EXPECT_TRUE(arguments[0].endsWith("/RF.EXE")) << arguments[0].toStdString();
    EXPECT_EQ(arguments.mid(1).join('|').toStdString(), "-dedicated|" + entry.toStdString());

    const QStringList stored = SettingsSection(home_.ReadSettings(kHostwardenApp), "Default");
    for (const QString& line :
         {"name=" + entry, QString("gametype=CTF"), QString("maxplayers=16"),
          QString("teamdamage=False"), QString("falldamage=True"), QString("balance=True"),
          QString("mapcount=0"), QString("Mod=None"), QString("default=1")})
        EXPECT_TRUE(stored.contains(line)) << line.toStdString() << " missing from:\n"
                                           << stored.join('\n').toStdString();

    ASSERT_TRUE(desktop_.Click(main_, kExit));
    const auto question = desktop_.WaitForWindow(kExitTitle);
    ASSERT_TRUE(question.has_value());
    // The box defaults to No, so Yes is chosen by its own key.
    ASSERT_TRUE(Answer(*question, "alt+y"));

    // The launch stored the configuration, so no question about changed values follows;
    // should one come, answer it so the rest can still be seen.
    bool askedToSave = false;
    ASSERT_TRUE(WaitUntil(
        [&] {
            if (!hostwarden_.IsRunning())
                return true;
            const auto again = desktop_.FindWindow(kExitTitle);
            if (again && *again != *question && !askedToSave) {
                askedToSave = true;
                Answer(*again, "alt+n");
            }
            return false;
        },
        15s, 50ms))
        << "hostwarden did not end";
    EXPECT_FALSE(askedToSave) << "asked to save a configuration the launch had stored";
    EXPECT_TRUE(desktop_.WaitForWindowGone(*server)) << "the server window was not closed";
    EXPECT_TRUE(WaitUntil([&] { return game_.Read("events.txt").contains("closed pid"); }, 10s));
}

INSTANTIATE_TEST_SUITE_P(ListEntries, LaunchName,
                         testing::Values(NameCase{"DEFAULT", "Upper"},
                                         NameCase{"Default", "AsCreated"}),
                         [](const testing::TestParamInfo<NameCase>& info) {
                             return std::string(info.param.label);
                         });

TEST_F(LaunchTest, ExitAnsweredNoKeepsEverythingRunning) {
    ASSERT_NO_FATAL_FAILURE(Start("DEFAULT", "exit-no"));
    ASSERT_TRUE(desktop_.Click(main_, kLaunch));
    const auto server = desktop_.WaitForWindow(kServerTitle, TitleMatch::Exact, 20s);
    ASSERT_TRUE(server.has_value());

    ASSERT_TRUE(desktop_.Click(main_, kExit));
    const auto question = desktop_.WaitForWindow(kExitTitle);
    ASSERT_TRUE(question.has_value());
    // Return takes the default button, No.
    ASSERT_TRUE(Answer(*question, "Return"));

    ASSERT_TRUE(desktop_.WaitForWindowGone(*question));
    EXPECT_TRUE(hostwarden_.IsRunning());
    EXPECT_TRUE(desktop_.WindowExists(*server));
    EXPECT_FALSE(game_.Read("events.txt").contains("closed pid"));
}

TEST_F(LaunchTest, MinimizeIconifiesTheMainWindow) {
    ASSERT_NO_FATAL_FAILURE(Start("DEFAULT", "minimize"));
    const auto iconic = [&] {
        const ToolResult state =
            desktop_.Run("xprop", {"-id", QString::number(main_), "_NET_WM_STATE", "WM_STATE"});
        return state.out.contains("_NET_WM_STATE_HIDDEN") && state.out.contains("Iconic");
    };
    ASSERT_FALSE(iconic());

    ASSERT_TRUE(desktop_.Click(main_, kMinimize));

    EXPECT_TRUE(WaitUntil(iconic, 10s)) << "not iconic";
    EXPECT_TRUE(hostwarden_.IsRunning());
}

} // namespace
