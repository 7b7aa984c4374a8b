// The About window and its settings reset, and a picture of every window for a person to look
// at: every caption readable, none cut off.
#include "Journey.h"

using namespace e2e;

namespace {

// About opens over a main window that takes no input; its text is the 27 lines; OK hands the
// input back. "Fix Reg" answered No changes nothing; Yes empties the settings and ends the
// program, whose next start is a first run. Each window on the way is left, with its frame,
// in e2e-artifacts/window-<form>.png.
TEST_F(Journey, AboutFixRegAndEveryWindowPictured) {
    const auto shoot = [&](WindowId window, const QString& form) {
        desktop_.Run("import", {"-frame", "-window", QString::number(window),
                                "png:" + ArtifactPath("window-" + form + ".png")});
    };
    StartMain();
    const QByteArray seeded = Settings();
    shoot(main_, "Hostwarden");
    const struct {
        const char *opener, *title, *form, *closer;
    } dialogs[] = {{"CMDMod", "Select a mod from the list", "Mods", "CMDCancel"},
                   {"CMDNew", "Name?", "NewConf", "CMDCancel"},
                   {"CMDCopy", "Copy DEFAULT to:", "CopyConfig", "CMDCancel"},
                   {"CMDTextRate", "Set Text Rate", "Text_Rate", "Command2"},
                   {"CMDMsgRate", "Message Rate", "MsgRate", "CMDCancel"},
                   {"CMDAddMap", "Select Maps", "ShippedMaps", "CMDCancel"},
                   {"CMDAbout", "About-Help", "About", "CMDOK"}};
    for (const auto& d : dialogs) {
        ASSERT_TRUE(ClickMain(d.opener));
        const auto window = desktop_.WaitFor(d.title);
        ASSERT_TRUE(window) << d.title << " missing; windows: " << Windows();
        shoot(*window, d.form);
        if (d.form != QLatin1String("About")) {
            ASSERT_TRUE(Click(*window, d.form, d.closer) && desktop_.WaitGone(*window));
        }
    }
    auto about = desktop_.Find("About-Help");
    ASSERT_TRUE(ClickMain("CMDExit"));
    EXPECT_FALSE(desktop_.WaitFor(kExitTitle, 1s)) << "the main window took a click";
    ASSERT_TRUE(Click(*about, "About", "Text1") && desktop_.Key("ctrl+a") &&
                desktop_.Key("ctrl+c"));
    QStringList lines;
    const auto clipboard = [&] { return desktop_.Run("xclip", {"-o", "-selection", "clipboard"}); };
    WaitUntil([&] { return (lines = clipboard().value_or("").split('\n')).size() > 1; }, 5s);
    ASSERT_EQ(lines.size(), 28) << "27 lines, the last ended too";
    EXPECT_EQ(lines[0], "Hostwarden 2.0 by Velloquin");
    EXPECT_EQ(lines.mid(22, 4).join('|'),
              "Note This|If you wish to use the Server Recovery option you MUST use AutoMessages. "
              "The server Recovery use some of the subs that Automsgs uses. Also It isn't 100% "
              "successfull. It relys on the dedicated server closing or not responding. A mere "
              "error wont be enough to trigger it.||I removed time scripting because it was full "
              "of bugs and wasn't realy in demand. It also was having bad effects on Automsgs.");
    ASSERT_TRUE(Click(*about, "About", "CMDOK") && desktop_.WaitGone(*about));
    ASSERT_TRUE(ClickMain("CMDExit"));
    auto question = desktop_.WaitFor(kExitTitle);
    ASSERT_TRUE(question && Answer(*question, "Return")) << "the main window takes no input";

    for (const QString answer : {"Return", "alt+y"}) { // No, the default button, then Yes
        ASSERT_TRUE(ClickMain("CMDAbout") && (about = desktop_.WaitFor("About-Help")));
        ASSERT_TRUE(Click(*about, "About", "CMDReset"));
        ASSERT_TRUE(question = desktop_.WaitFor("Reset Application Registry Entries?"));
        ASSERT_TRUE(Answer(*question, answer));
        if (answer == "Return") {
            EXPECT_TRUE(desktop_.WaitGone(*question) && hostwarden_.IsRunning() &&
                        Settings() == seeded && Click(*about, "About", "CMDOK"));
        }
    }
    EXPECT_TRUE(hostwarden_.WaitForExit(10s)) << Windows();
    EXPECT_EQ(Settings().trimmed(), "");
    hostwarden_ = StartHostwarden();
    const auto warning = desktop_.WaitFor("Warning");
    ASSERT_TRUE(warning && Answer(*warning, "Return")) << Windows();
    const auto setup = desktop_.WaitFor("Setup");
    ASSERT_TRUE(setup);
    shoot(*setup, "Setup");
    ASSERT_TRUE(Click(*setup, "Setup", "CMDBrowse"));
    const auto browse = desktop_.WaitFor("Browse");
    ASSERT_TRUE(browse);
    shoot(*browse, "Browse");
    ASSERT_TRUE(Click(*setup, "Setup", "CMDBrowse")); // beside Browse, on the disabled Setup
    EXPECT_TRUE(WaitUntil([&] { return desktop_.Active() == browse; }, 5s))
        << "Browse stays in front";
}

} // namespace
