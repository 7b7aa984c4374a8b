#include "automation/Module2.h"

#include "FakeWindowServices.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Post = FakeWindowServices::Post;

// One top-level window of a scripted desktop. Kind: ' ' an ordinary window, 'M' the
// main window, 'o' a window owned by the main window, 'x' owned by another window,
// 'd' disabled (showing a modal dialog).
struct Win {
    const char* title;
    char kind = ' ';
};

struct Row {
    const char* name;
    const char* needle;
    std::vector<Win> desktop; // top first
    int closed;               // index of the window asked to close, -1 for none
};

const Row kRows[] = {
    {"ExactTitle",
     "Red Faction Dedicated Server",
     {{"xterm"}, {"Red Faction Dedicated Server"}, {"Hostwarden", 'M'}},
     1},
    {"TitleInCapitals",
     "Red Faction Dedicated Server",
     {{"RED FACTION DEDICATED SERVER"}, {"Hostwarden", 'M'}},
     0},
    {"TextBeforeAndAfter",
     "Red Faction Dedicated Server",
     {{"Hostwarden", 'M'}, {"my red faction dedicated server log"}},
     1},
    {"NeedleInOtherCase",
     "RED faction DEDICATED server",
     {{"Red Faction Dedicated Server"}, {"Hostwarden", 'M'}},
     0},
    {"OnlyTheUpperOfTwo",
     "Red Faction Dedicated Server",
     {{"Editor"},
      {"Red Faction Dedicated Server"},
      {"Red Faction Dedicated Server"},
      {"Hostwarden", 'M'}},
     1},
    {"PartOfTheTitleOnly",
     "Red Faction Dedicated Server",
     {{"Red Faction Dedicated"}, {"Dedicated Server"}, {"Hostwarden", 'M'}},
     -1},
    {"NoWindows", "Red Faction Dedicated Server", {}, -1},
    {"EmptyTitlesNeverMatch",
     "",
     {{""}, {""}, {"Red Faction Dedicated Server"}, {"Hostwarden", 'M'}},
     2},
    {"DisabledMatchStopsTheWalk",
     "Red Faction Dedicated Server",
     {{"Red Faction Dedicated Server", 'd'}, {"Red Faction Dedicated Server"}, {"Hostwarden", 'M'}},
     -1},
    {"MainWindowNeverClosed",
     "Hostwarden",
     {{"Hostwarden - Red Faction Dedicated Server", 'M'}, {"Hostwarden copy"}},
     -1},
    {"MatchingMainWindowHidesTheServer",
     "Red Faction Dedicated Server",
     {{"Red Faction Dedicated Server setup", 'M'}, {"Red Faction Dedicated Server"}},
     -1},
    {"OwnedByMainNeverClosed",
     "Red Faction Dedicated Server",
     {{"About Red Faction Dedicated Server", 'o'},
      {"Red Faction Dedicated Server"},
      {"Hostwarden", 'M'}},
     -1},
    {"OwnedByAnotherWindowIsClosed",
     "Red Faction Dedicated Server",
     {{"Red Faction Dedicated Server", 'x'}, {"Hostwarden", 'M'}},
     0},
};

class CloseWindowByTitleTest : public testing::TestWithParam<Row> {};

TEST_P(CloseWindowByTitleTest, AsksOnlyTheFirstEligibleMatchToClose) {
    const Row& row = GetParam();
    FakeWindowServices fake;
    const WindowHandle stranger = 7;
    fake.mainWindow = 1; // placeholder until the main window is added
    std::vector<WindowHandle> handles;
    for (const Win& w : row.desktop) {
        const WindowHandle owner = w.kind == 'o' ? WindowHandle(1) : w.kind == 'x' ? stranger : 0;
        handles.push_back(fake.Add(w.title, owner, w.kind == 'd' ? WS_DISABLED : 0));
        if (w.kind == 'M')
            fake.mainWindow = handles.back();
    }
    for (auto& w : fake.windows)
        if (w.owner == 1)
            w.owner = fake.mainWindow;

    CloseWindowByTitle(fake, row.needle);

    QList<Post> expected;
    if (row.closed >= 0)
        expected = {{handles[row.closed], WM_CANCELMODE}, {handles[row.closed], WM_CLOSE}};
    EXPECT_EQ(fake.posts, expected);
}

INSTANTIATE_TEST_SUITE_P(Desktops, CloseWindowByTitleTest, testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(CloseWindowByTitle, LetsPendingEventsRunAfterEachWindowItStepsPast) {
    FakeWindowServices fake;
    fake.mainWindow = fake.Add("Hostwarden");
    fake.Add("xterm");
    const WindowHandle server = fake.Add("Red Faction Dedicated Server");
    fake.Add("Red Faction Dedicated Server");
    QList<int> postsSeenByEvents;
    fake.onPendingEvents = [&] { postsSeenByEvents.append(int(fake.posts.size())); };

    CloseWindowByTitle(fake, kServerWindowTitle);

    // Two windows stepped past before the match, and the requests come after them.
    EXPECT_EQ(postsSeenByEvents, (QList<int>{0, 0}));
    EXPECT_EQ(fake.posts, (QList<Post>{{server, WM_CANCELMODE}, {server, WM_CLOSE}}));
}

TEST(CloseWindowByTitle, WalksToTheBottomWhenNothingMatches) {
    FakeWindowServices fake;
    fake.mainWindow = fake.Add("Hostwarden");
    fake.Add("xterm");
    fake.Add("");
    int events = 0;
    fake.onPendingEvents = [&] { ++events; };

    CloseWindowByTitle(fake, kServerWindowTitle);

    EXPECT_EQ(events, 3);
    EXPECT_TRUE(fake.posts.isEmpty());
}

TEST(CloseWindowByTitle, SkipsAWindowThatVanishedWhileEventsRan) {
    FakeWindowServices fake;
    fake.mainWindow = fake.Add("Hostwarden");
    const WindowHandle server = fake.Add("Red Faction Dedicated Server");
    const WindowHandle second = fake.Add("Red Faction Dedicated Server (2)");
    // The server exits while the walk lets the main window's events run, after the
    // walk has already stepped to it.
    fake.onPendingEvents = [&] { fake.Vanish(server); };

    CloseWindowByTitle(fake, kServerWindowTitle);

    EXPECT_EQ(fake.posts, (QList<Post>{{second, WM_CANCELMODE}, {second, WM_CLOSE}}));
}

TEST(ActivateServerWindow, ActivatesByTheServerTitleAndPassesFailureOn) {
    FakeWindowServices fake;
    EXPECT_EQ(ActivateServerWindow(fake), ActivateResult::NotFound);
    fake.Add("Red Faction Dedicated Server");
    EXPECT_EQ(ActivateServerWindow(fake), ActivateResult::Activated);
    EXPECT_EQ(fake.activations,
              (QList<QString>{"Red Faction Dedicated Server", "Red Faction Dedicated Server"}));
}

} // namespace
