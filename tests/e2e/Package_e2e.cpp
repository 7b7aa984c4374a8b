// The Debian package as an operator without the game meets it: unpacked into a throw-away
// root (never installed here), its demo-game command lays out a game, and its hostwarden
// runs on that game and launches the packaged stand-in server.
#include "Journey.h"

using namespace e2e;

namespace {

QString DesktopEntryKey(const QString& entry, const QString& key) {
    for (const QString& line : QString::fromUtf8(ReadFile(entry)).split('\n'))
        if (line.startsWith(key + "="))
            return line.mid(key.size() + 1);
    return {};
}

TEST_F(Journey, PackagedProgramRunsOnItsDemoGame) {
    QTemporaryDir root;
    Process unpack("dpkg-deb", {"-x", HOSTWARDEN_DEB, root.path()});
    ASSERT_TRUE(unpack.WaitForExit(60s) && unpack.ExitCode() == 0) << "cannot unpack the package";
    Process demo(root.filePath("usr/bin/hostwarden-demo-game"), {gameParent_.filePath("demo")},
                 {"HOME=" + home_.path()});
    ASSERT_TRUE(demo.WaitForExit(30s) && demo.ExitCode() == 0);
    game_ = gameParent_.filePath("demo");
    EXPECT_EQ(demo.Output(), GameDir() + "\n");

    Seed(LaterRun{});
    hostwarden_ = StartHostwarden(std::nullopt, root.filePath("usr/bin/hostwarden"));
    main_ = desktop_.WaitFor(kMainTitle, 30s).value_or(0);
    ASSERT_TRUE(main_) << "no main window; windows: " << Windows();
    // The desktop shell ties the window to its menu entry through the window class.
    const QString entry = root.filePath("usr/share/applications/" HOSTWARDEN_APP_ID ".desktop");
    EXPECT_TRUE(desktop_.Run("xprop", {"-id", QString::number(main_), "WM_CLASS"})
                    .value_or("")
                    .contains(", \"" + DesktopEntryKey(entry, "StartupWMClass") + "\""));

    ASSERT_TRUE(ClickMain("CMDLaunch"));
    EXPECT_TRUE(desktop_.WaitFor(kServerTitle)) << "no server window; windows: " << Windows();
    EXPECT_TRUE(GameLines("commandline.txt").value(0).startsWith(GameDir())) << "not the demo's";
}

} // namespace
