#include "automation/Module2.h"

#include "FakeWindowServices.h"
#include "Texts.h"

#include <gtest/gtest.h>

namespace {

using texts::kServerTitle;

// The main window's events run after each window the walk steps past, never after asking; a
// window destroyed meanwhile is stepped over. Which windows are asked on a real desktop (our
// own, disabled ones, the stacking order, any case) is the close-window journey's.
TEST(CloseWindowByTitle, LetsEventsRunBetweenWindowsAndStepsOverDestroyedOnes) {
    FakeWindowServices fake;
    fake.Add("xterm");
    fake.mainWindow = fake.Add("Hostwarden");
    const WindowHandle destroyed = fake.Add(kServerTitle);
    const WindowHandle owned = fake.Add(kServerTitle + " (2)", 7); // by another program's window
    int events = 0;
    fake.onPendingEvents = [&] {
        EXPECT_TRUE(fake.posts.isEmpty()) << "events ran after the request";
        if (++events == 2)
            fake.Vanish(destroyed);
    };
    CloseWindowByTitle(fake, kServerTitle);
    EXPECT_EQ(fake.posts,
              (QList<FakeWindowServices::Post>{{owned, WM_CANCELMODE}, {owned, WM_CLOSE}}));
    EXPECT_EQ(events, 3);
}

// The launched server's console is marked '*'.
TEST(FindServerWindow, PrefersTheLaunchedServerThenTheWholeTitleNeverAMention) {
    const std::pair<const char*, int> rows[] = {
        {"notes about red faction dedicated server.txt - editor|RFDS", 1},
        {"RFDS - log|red faction DEDICATED server", 1},
        {"RFDS - log|Other", 0},
        {"RFDS|RFDS - console*", 1}};
    for (const auto& [desktop, found] : rows) {
        FakeWindowServices fake;
        for (const QString& w : QString(desktop).replace("RFDS", kServerTitle).split('|')) {
            fake.Add(QString(w).remove('*'));
            fake.windows.last().process = w.endsWith('*') ? 300 : 0;
        }
        EXPECT_EQ(FindServerWindow(fake, 300), fake.windows[found].handle) << desktop;
    }
}

} // namespace
