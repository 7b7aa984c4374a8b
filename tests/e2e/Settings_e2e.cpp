// Start-up and editing survive what a hand edit or a second start does to the settings.
#include "Journey.h"

#include <sys/stat.h>

using namespace e2e;

namespace {

// A FIFO in place of the settings file is refused with the "Settings Error" box. A list
// count edited far beyond its entries still brings the main window up at once. 320 digits
// typed into the port field stay there and the window keeps answering. A second start leaves
// one main window, the first one, brought out of the task bar to the front.
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
    EXPECT_TRUE(WaitUntil([&] { return Section("Startup").contains("PortNum=" + digits); }, 10s))
        << Section("Startup").join('\n');
    ASSERT_TRUE(ClickMain("CMDExit"));
    const auto question = desktop_.WaitFor(kExitTitle, 10s);
    ASSERT_TRUE(question) << "the window no longer answers";
    ASSERT_TRUE(Answer(*question, "Return")); // No: keep running
    ASSERT_TRUE(desktop_.WaitGone(*question));

    ASSERT_TRUE(ClickMain("CMDMin"));
    ASSERT_TRUE(WaitUntil([&] { return desktop_.Active() != main_; }, 10s));
    Process second = StartHostwarden();
    EXPECT_TRUE(second.WaitForExit(10s));
    EXPECT_TRUE(WaitUntil([&] { return desktop_.Active() == main_; }, 10s))
        << "the running window did not come forward";
    EXPECT_EQ(desktop_.Titles().count(kMainTitle), 1) << Windows();
    EXPECT_TRUE(hostwarden_.IsRunning());
}

} // namespace
