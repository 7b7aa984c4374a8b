#include "automation/Module2.h"

#include "FakeWindowServices.h"
#include "Texts.h"

#include <gtest/gtest.h>

namespace {

// The main window's events run after each window the walk steps past, never after asking. Our
// own windows, a disabled match and the stacking order are the close-window journey's.
TEST(CloseWindowByTitle, AsksOnlyTheFirstEligibleMatchToClose) {
    const struct {
        const char* name;
        const char* needle;
        // Top window first, separated by "|", each title after its kind: ' ' an ordinary
        // window, 'M' the main window, 'x' owned by another window, 'v' destroyed while the
        // events run. "RFDS" stands for the server's title.
        const char* desktop;
        int closed; // index of the window asked to close, -1 for none
        int events; // windows stepped past
    } rows[] = {{"ExactTitle", "RFDS", " xterm| RFDS|MHostwarden", 1, 1},
                {"NeedleInOtherCase", "RED faction DEDICATED server", " RFDS|MHostwarden", 0, 0},
                {"PartOfTheTitleOnly", "RFDS",
                 " Red Faction Dedicated| Dedicated Server|MHostwarden", -1, 3},
                {"NoWindows", "RFDS", "", -1, 0},
                {"EmptyTitlesNeverMatch", "", " | | RFDS|MHostwarden", 2, 2},
                {"MatchingMainWindowHidesTheServer", "RFDS", "MRFDS setup| RFDS", -1, 0},
                {"OwnedByAnotherWindowIsClosed", "RFDS", "xRFDS|MHostwarden", 0, 0},
                // The walk has already stepped to the window when it goes.
                {"VanishedWindowIsSkipped", "RFDS", "MHostwarden|vRFDS| RFDS (2)", 2, 2}};
    const auto expand = [](const char* text) {
        return QString(text).replace("RFDS", texts::kServerTitle);
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FakeWindowServices fake;
        const QStringList desktop = expand(row.desktop).split('|', Qt::SkipEmptyParts);
        for (const QString& w : desktop) {
            const WindowHandle h = fake.Add(w.mid(1), w[0] == 'x' ? 7 : 0);
            if (w[0] == 'M')
                fake.mainWindow = h;
        }
        int events = 0;
        fake.onPendingEvents = [&] {
            ++events;
            EXPECT_TRUE(fake.posts.isEmpty()) << "events ran after the request";
            for (qsizetype i = 0; i < desktop.size(); ++i)
                if (desktop[i][0] == 'v')
                    fake.Vanish(fake.windows[i].handle);
        };

        CloseWindowByTitle(fake, expand(row.needle));

        QList<FakeWindowServices::Post> expected;
        if (row.closed >= 0)
            for (const std::uint32_t message : {WM_CANCELMODE, WM_CLOSE})
                expected.append({fake.windows[row.closed].handle, message});
        EXPECT_EQ(fake.posts, expected);
        EXPECT_EQ(events, row.events);
    }
}

// The launched server's console is marked '*'.
TEST(FindServerWindow, PrefersTheLaunchedServerThenTheWholeTitleNeverAMention) {
    const std::pair<const char*, int> rows[] = {
        {"notes about red faction dedicated server.txt - editor|RFDS", 1},
        {"notes about red faction dedicated server.txt - editor", -1},
        {"RFDS - log|red faction DEDICATED server", 1},
        {"RFDS - log|Other", 0},
        {"RFDS|RFDS - console*", 1},
        {"Hostwarden|", -1}};
    for (const auto& [desktop, found] : rows) {
        FakeWindowServices fake;
        for (const QString& w : QString(desktop).replace("RFDS", texts::kServerTitle).split('|')) {
            fake.Add(QString(w).remove('*'));
            fake.windows.last().process = w.endsWith('*') ? 300 : 0;
        }
        EXPECT_EQ(FindServerWindow(fake, 300), found < 0 ? 0 : fake.windows[found].handle)
            << desktop;
    }
}

} // namespace
