// The Debian package unpacked into a throw-away root, never installed here: its demo-game
// command lays out a game, its hostwarden runs on it and launches the packaged stand-in.
#include "Journey.h"

using namespace e2e;

namespace {

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
    const QString wmClass = desktop_.Run("xprop", {"-id", QString::number(main_), "WM_CLASS"})
                                .value_or("")
                                .section('"', 3, 3);
    EXPECT_TRUE(ReadFile(root.filePath("usr/share/applications/" HOSTWARDEN_APP_ID ".desktop"))
                    .contains("\nStartupWMClass=" + wmClass.toUtf8() + "\n"))
        << wmClass;

    ASSERT_TRUE(ClickMain("CMDLaunch"));
    EXPECT_TRUE(desktop_.WaitFor(kServerTitle)) << "no server window; windows: " << Windows();
    EXPECT_TRUE(GameLines("commandline.txt").value(0).startsWith(GameDir())) << "not the demo's";
}

} // namespace
