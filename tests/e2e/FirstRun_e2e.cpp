// The first start of hostwarden: the backup warning, the Setup window with the stored
// game directory, the first-run configuration in the settings file, and later starts
// that go straight to the main window.
#include "Desktop.h"
#include "GameCopy.h"
#include "Hostwarden.h"
#include "TempHome.h"
#include "XSession.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSet>

using namespace e2e;

namespace {

// The Setup window's OK button, centre of its client rectangle (64, 88, 81 x 17).
constexpr QPoint kSetupOk(64 + 81 / 2, 88 + 17 / 2);

class FirstRunTest : public testing::Test {
protected:
    void SetUp() override {
        home_.WriteSettings(kHostwardenApp,
                            "[Startup]\nRFLocation=" + game_.GameDir().toUtf8() + "\n");
    }

    // Answers the warning and confirms the stored directory, as an operator would.
    std::optional<WindowId> CompleteFirstRun(Process& hostwarden) {
        const auto warning = desktop_.WaitForWindow("Warning", TitleMatch::Exact, 20s);
        EXPECT_TRUE(warning.has_value())
            << "no warning; windows: " << desktop_.WindowTitles().join(", ").toStdString();
        if (!warning)
            return std::nullopt;
        EXPECT_FALSE(desktop_.FindWindow("Setup")) << "Setup is shown only after the warning";
        EXPECT_TRUE(desktop_.Activate(*warning));
        EXPECT_TRUE(desktop_.PressKey("Return"));

        const auto setup = desktop_.WaitForWindow("Setup");
        EXPECT_TRUE(setup.has_value()) << "no Setup window after the warning's OK";
        if (!setup)
            return std::nullopt;
        // OK counts as enabled when clicking it leads on to the main window.
        EXPECT_TRUE(desktop_.Click(*setup, kSetupOk));
        const auto main = desktop_.WaitForWindow(kMainWindowTitle, TitleMatch::Exact, 20s);
        EXPECT_TRUE(main.has_value()) << "OK of Setup did not lead on; windows: "
                                      << desktop_.WindowTitles().join(", ").toStdString();
        EXPECT_TRUE(desktop_.WaitForWindowGone(*setup)) << "Setup stays after its OK";
        EXPECT_TRUE(hostwarden.IsRunning());
        return main;
    }

    QStringList Section(const QString& name) const {
        return SettingsSection(home_.ReadSettings(kHostwardenApp), name);
    }

    // A screenshot once the window's picture has stopped changing (it may still be
    // painting right after it maps).
    QString SettledScreenshot(const QString& name, WindowId window) {
        QByteArray previous;
        QString path;
        WaitUntil(
            [&] {
                path = desktop_.Screenshot(name, window);
                QFile file(path);
                const QByteArray now = file.open(QIODevice::ReadOnly) ? file.readAll() : "";
                const bool settled = !now.isEmpty() && now == previous;
                previous = now;
                return settled;
            },
            10s, 200ms);
        return path;
    }

    XSession session_;
    Desktop desktop_{session_};
    TempHome home_;
    GameCopy game_;
};

TEST_F(FirstRunTest, WarningAndSetupLeadToTheMainWindowWithTheDefaultsStored) {
    Process hostwarden = StartHostwarden(session_, home_, "first-run");

    const auto main = CompleteFirstRun(hostwarden);
    ASSERT_TRUE(main.has_value());

    const QStringList startup = Section("Startup");
    EXPECT_TRUE(startup.contains("HasRunSetup=1")) << startup.join('\n').toStdString();
    EXPECT_TRUE(startup.contains("RFLocation=" + game_.GameDir()))
        << startup.join('\n').toStdString();
    const QStringList defaults = Section("Default");
    for (const char* line :
         {"gametype=CTF",     "servname=$Me's Dedicated CTF Running Hostwarden 2.0",
          "name=Default",     "maxplayers=16",
          "password=",        "rconpass=",
          "maxtime=30",       "maxkills=50",
          "maxcaps=5",        "maxgeo=128",
          "teamdamage=false", "falldamage=true",
          "weaponstay=false", "forcespawn=false",
          "balance=true",     "MapCount=0",
          "default=1",        "MessageOn=1",
          "Text2=",           "Text3="})
        EXPECT_TRUE(defaults.contains(line)) << line << " missing from:\n"
                                             << defaults.join('\n').toStdString();
    EXPECT_EQ(Section("ConfName").join('\n').toStdString(), "ConfCount=1\nConf1=DEFAULT");

    const auto geometry = desktop_.WindowGeometry(*main);
    ASSERT_TRUE(geometry.has_value());
    EXPECT_EQ(geometry->size(), QSize(791, 504));
    const QString shot = SettledScreenshot("main-window", *main);
    ASSERT_FALSE(shot.isEmpty());
    const ToolResult size = RunTool("identify", {"-format", "%w x %h", shot});
    EXPECT_EQ(size.out.trimmed(), "791 x 504");
}

TEST_F(FirstRunTest, WarningCancelEndsTheProgramAndStoresNothing) {
    const QByteArray seeded = home_.ReadSettings(kHostwardenApp);
    Process hostwarden = StartHostwarden(session_, home_, "first-run-cancel");
    const auto warning = desktop_.WaitForWindow("Warning", TitleMatch::Exact, 20s);
    ASSERT_TRUE(warning.has_value());
    ASSERT_TRUE(desktop_.Activate(*warning));

    // Escape answers Cancel on an OK/Cancel box.
    ASSERT_TRUE(desktop_.PressKey("Escape"));

    EXPECT_TRUE(hostwarden.WaitForExit(10s).has_value());
    EXPECT_FALSE(desktop_.FindWindow("Setup"));
    EXPECT_EQ(home_.ReadSettings(kHostwardenApp), seeded);
}

TEST_F(FirstRunTest, ALaterStartShowsNeitherWarningNorSetupAndKeepsTheConfiguration) {
    {
        Process first = StartHostwarden(session_, home_, "first-run-before-second");
        ASSERT_TRUE(CompleteFirstRun(first).has_value());
        first.Stop();
    }
    // An operator's own value must survive: a later start creates no defaults again.
    QByteArray settings = home_.ReadSettings(kHostwardenApp);
    ASSERT_TRUE(settings.contains("\nmaxplayers=16\n"));
    settings.replace("\nmaxplayers=16\n", "\nmaxplayers=12\n");
    home_.WriteSettings(kHostwardenApp, settings);

    Process second = StartHostwarden(session_, home_, "second-run");
    QSet<QString> seen;
    ASSERT_TRUE(WaitUntil(
        [&] {
            const QStringList titles = desktop_.WindowTitles();
            for (const QString& t : titles)
                seen.insert(t);
            return titles.contains(kMainWindowTitle);
        },
        20s, 20ms))
        << "no main window; windows: " << desktop_.WindowTitles().join(", ").toStdString();

    EXPECT_FALSE(seen.contains("Warning"));
    EXPECT_FALSE(seen.contains("Setup"));
    EXPECT_TRUE(Section("Default").contains("maxplayers=12"));
    EXPECT_EQ(Section("ConfName").join('\n').toStdString(), "ConfCount=1\nConf1=DEFAULT");
    EXPECT_TRUE(second.IsRunning());
}

} // namespace
