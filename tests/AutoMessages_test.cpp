#include "automation/AutoMessageHost.h"
#include "automation/AutoMessages.h"
#include "automation/KeySender.h"
#include "automation/Module2.h"
#include "server/AppState.h"

#include "FakeWindowServices.h"
#include "Recorders.h"
#include "ScriptedMessageBoxes.h"
#include "Texts.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using texts::kServerTitle;

const MessageRequest kServerError{
    "Red Faction Dedicated Server Cannot be found or is not responding. Please varify the "
    "server is running and try again",
    "Server Error", MsgButtons::OK, MsgIcon::None, MsgDefault::First};

// The main window and the key sender as the automatic messages see them, a server launched.
struct Rig : AutoMessageHost, KeySender {
    Rig() {
        state.MessageRate = 3;
        server = windows.Add(kServerTitle);
        am.ServerLaunched(42);
        am.WatchServer(process);
    }

    bool MessageChecked() override { return messageChecked; }
    bool RandomChecked() override { return randomChecked; }
    bool ServRecChecked() override { return servRecChecked; }
    QString MessageText(int index) override { return texts[index]; }
    void SetCountCaption(const QString& caption) override { captions.append(caption); }
    void EnableAddsTimer(bool enabled) override { addsTimer = enabled; }
    void EnableSendTimer(bool enabled) override { sendTimer = enabled; }
    void EnableServRec(bool enabled) override { servRecEnabled = enabled; }
    void UncheckServRec() override { servRecChecked = false; }
    void Launch() override { ++launches, onLaunch(); }
    int TypistIntervalMs() override { return interval; }
    void PushKeys(const QString& keys) override {
        if (failKeys)
            throw KeySendError("no key for " + keys.toStdString());
        pushed.append(keys);
    }

    void Countdown(int seconds) {
        for (int i = 0; i < seconds; ++i)
            am.TMRAdds_Timer();
    }
    // Each tick takes the typing interval plus `slowness` milliseconds.
    void Typist(int ticks) {
        for (int i = 0; i < ticks; ++i) {
            clock.now += interval + slowness;
            am.TMRSend_Timer();
        }
    }
    // Hands the next queued line to the typist and lets it finish.
    void TypeLine() {
        am.Timer1_Timer();
        for (int i = 0; i < 10000 && am.TMRSendEnabled(); ++i)
            Typist(1);
    }
    // Fills the first boxes, checks "Auto Message" and runs one whole interval.
    void QueueBatch(const QStringList& batch) {
        for (int k = 0; k < batch.size(); ++k)
            texts[k] = batch[k];
        am.CHKMessage_Click(true);
        Countdown(180);
    }
    QString Typed() const { return pushed.join(QString()); }
    bool IdleTypist() const {
        return am.PendingLine().isEmpty() && am.SendPos() == 0 && !am.TMRSendEnabled() &&
               !sendTimer;
    }

    bool messageChecked = true, randomChecked = false, servRecChecked = false;
    bool servRecEnabled = true, addsTimer = false, sendTimer = false, failKeys = false;
    QString texts[4];
    QStringList captions, pushed;
    int launches = 0, interval = 110, slowness = 0;
    std::function<void()> onLaunch = [] {};

    AppState state;
    FakeWindowServices windows;
    ScriptedRandom random;
    BeepRecorder beeper;
    ScriptedMessageBoxes boxes;
    FakeClock clock;
    AutoMessages am{*this, state, windows, *this, random, beeper, boxes, clock};
    WindowHandle server = 0;
    std::int64_t process = 500;
};

class AutoMessagesTest : public Rig, public ::testing::Test {};

TEST_F(AutoMessagesTest, CountdownQueuesNonEmptyBoxesInOrderEveryIntervalWhileChecked) {
    servRecChecked = true;
    Countdown(10); // every box empty
    texts[0] = "a~b";
    texts[2] = "third";
    messageChecked = false;
    Countdown(10);
    messageChecked = true;
    EXPECT_TRUE(captions.isEmpty());
    am.CHKMessage_Click(true);
    EXPECT_TRUE(addsTimer);
    Countdown(179);
    EXPECT_TRUE(am.Queue().isEmpty());
    Countdown(181);
    EXPECT_EQ(captions[179], "Next Auto Message due in 0 seconds.");
    EXPECT_EQ(am.Queue(), QStringList({"a~b", "third", "a~b", "third"}));

    // Unchecking "Auto Message" stops the countdown where it stands; the queue is still typed.
    Countdown(100);
    am.CHKMessage_Click(false);
    EXPECT_FALSE(am.TMRAddsEnabled() || addsTimer || servRecEnabled || servRecChecked);
    Countdown(50);
    for (int line = 0; line < 4; ++line)
        TypeLine();
    EXPECT_EQ(Typed(), "say a~b~say third~say a~b~say third~");
    am.CHKMessage_Click(true);
    EXPECT_TRUE(servRecEnabled && !servRecChecked) << "re-enabling does not check the box again";
    Countdown(1);
    EXPECT_EQ(captions.last(), "Next Auto Message due in 79 seconds.");
}

TEST_F(AutoMessagesTest, RandomPicksOneNonEmptyBoxFromTheGenerator) {
    const std::tuple<QStringList, QList<double>, QStringList> rows[] = {
        {{"a", "b", "c", "d"}, {0.0, 0.24, 0.25, 0.5, 0.9999}, {"a", "a", "b", "c", "d"}},
        {{"", "", "", "d"}, QList<double>(20, 0.1) << 0.9, {"d"}}};
    for (const auto& [texts, script, expected] : rows) {
        SCOPED_TRACE(texts.join('|').toStdString());
        Rig t;
        t.randomChecked = true;
        t.random.script = script;
        t.QueueBatch(texts);
        t.Countdown(180 * (expected.size() - 1));
        EXPECT_EQ(t.am.Queue(), expected);
        EXPECT_TRUE(t.random.script.isEmpty()) << "every drawn number is used";
    }
}

// Decision: a console that exists but does not take the focus is not a lost server. After 10
// seconds by the clock (ticks may be slow) without progress the line is dropped and told.
TEST_F(AutoMessagesTest, StolenFocusHoldsTheLineAndDropsItAfterTenSecondsWithoutProgress) {
    const std::tuple<int, int, int> rows[] = {{110, 0, 92}, {10, 90, 101}};
    for (const auto& [interval, slowness, ticksToDrop] : rows) {
        SCOPED_TRACE(interval);
        Rig t;
        t.interval = interval;
        t.slowness = slowness;
        t.am.QueueMessage("lost");
        t.am.QueueMessage("next");
        t.am.Timer1_Timer();
        t.Typist(2);
        t.am.Timer1_Timer();                            // no new line while one is typed
        for (const bool stolen : {true, false, true}) { // one key between two long waits
            t.windows.focusStolen = stolen;
            t.windows.focus = 0;
            t.Typist(stolen ? ticksToDrop - 1 : 1);
        }
        EXPECT_EQ(t.pushed, QStringList({"s", "a", "y"}));
        EXPECT_TRUE(t.am.TMRSendEnabled() && t.boxes.notices.isEmpty());
        t.Typist(1);
        EXPECT_TRUE(t.IdleTypist() && t.am.TMRAddsEnabled())
            << "the line goes, the countdown stays";
        EXPECT_TRUE(t.launches == 0 && t.boxes.shown.isEmpty()) << "no recovery";
        EXPECT_TRUE(t.boxes.notices.size() == 1 && t.boxes.notices[0].text.endsWith("\nsay lost~"));

        t.windows.focusStolen = false;
        t.TypeLine();
        EXPECT_EQ(t.Typed(), "say" + QString("say next~"));
    }
}

// Told once per run (the no-display journey), whatever else falls due.
TEST_F(AutoMessagesTest, WithoutADisplayTellsOnceAndNeitherRecoversNorKeepsQueueing) {
    windows.noDisplay = servRecChecked = true;
    QueueBatch({"first", "second"});
    TypeLine();
    EXPECT_TRUE(am.Queue().isEmpty() && IdleTypist() && !am.TMRAddsEnabled() && !addsTimer);
    ASSERT_EQ(boxes.shown.size(), 1);
    EXPECT_EQ(boxes.shown[0].title, texts::kNoDisplayTitle);
    EXPECT_TRUE(boxes.shown[0].text.startsWith(texts::kNoDisplayStart));
    EXPECT_EQ(std::tuple(launches, beeper.beeps, pushed.size(), am.ServerHandle()),
              std::tuple(0, 0, 0, 42u));
}

// A console just launched may take 30 s to appear; the old one, still closing, does not count.
// A launch drops the half-typed line. Our own questions holding the keys are the exit journey's.
TEST_F(AutoMessagesTest, CharacterWaitsForANewConsoleUpToThirtySeconds) {
    for (const bool appears : {true, false}) { // or only the old one stays, then goes
        SCOPED_TRACE(appears);
        Rig t;
        t.am.QueueMessage("hi");
        t.am.Timer1_Timer();
        t.Typist(2);
        t.am.ForgetServer();
        t.am.ServerLaunched(9, 500);
        t.windows.Vanish(appears ? t.server : 0);
        t.TypeLine();
        t.am.QueueMessage("new");
        t.am.Timer1_Timer();
        t.Typist(28000 / t.interval);
        EXPECT_TRUE(t.Typed() == "sa" && t.boxes.shown.isEmpty() && t.launches == 0);
        if (appears)
            t.windows.windows.append({t.server + 1, kServerTitle, 0, false, 500});
        t.windows.Vanish(t.server);
        t.TypeLine();
        EXPECT_EQ(t.Typed(), appears ? "sasay new~" : "sa");
        EXPECT_EQ(t.boxes.shown, appears ? QList<MessageRequest>{} : QList{kServerError});
    }
}

TEST_F(AutoMessagesTest, TheServersEndRecoversAtOnceAndAFailedStartIsToldWithItsDetails) {
    const std::tuple<const char*, bool, std::int64_t, int, bool, const char*> rows[] = {
        {"killed, messages off", false, 60000, 9, true, "Server Error"},
        {"ended cleanly at once", true, 1000, 0, false, "Server Error"},
        {"failed after 5 s", true, 5000, 3, false, "Server Error"},
        {"failed at once", false, 4999, 3, false, "Dedicated Server Error"}};
    for (const auto& [what, messages, afterMs, status, signalled, title] : rows) {
        SCOPED_TRACE(what);
        Rig t;
        t.QueueBatch({"queued"});
        t.messageChecked = messages;
        t.clock.now += afterMs;                                     // after the launch
        t.am.ServerExited({t.process - 1, "RF.EXE", 3, false, {}}); // not the server
        EXPECT_TRUE(t.boxes.shown.isEmpty() && t.am.ServerHandle() == 42);
        t.am.ServerExited({t.process, "/rf/RF.EXE", status, signalled, "wine: go\nno way"});
        ASSERT_EQ(t.boxes.shown.size(), 1);
        EXPECT_TRUE(t.am.Queue().isEmpty() && !t.addsTimer && t.am.ServerHandle() == 0);
        EXPECT_EQ(t.boxes.shown[0].title, title);
        EXPECT_TRUE(t.boxes.shown[0] == kServerError ||
                    t.boxes.shown[0].text.endsWith(
                        "Program: /rf/RF.EXE\r\nExit status: 3\r\nThe "
                        "last lines of its error output:\r\nwine: go\r\nno way"));
        t.am.QueueMessage("after");
        t.TypeLine();
        EXPECT_TRUE(t.pushed.isEmpty()) << "no server: the line is used up, nothing typed";
    }
}

TEST_F(AutoMessagesTest, RelaunchesStopAfterThreeInTenMinutesUntilTheOperatorLaunches) {
    servRecChecked = true;
    onLaunch = [this] { am.ServerLaunched(77), am.WatchServer(++process); };
    const auto lose = [this](int times, std::int64_t apartMs) {
        for (int i = 0; i < times; ++i, clock.now += apartMs)
            am.ServerExited({process, "RF.EXE", 3, false, "cannot start"});
        return std::pair(launches, int(boxes.shown.size()));
    };
    EXPECT_EQ(lose(5, 1000), std::pair(3, 1));
    EXPECT_TRUE(boxes.shown[0].text.contains("after 3 automatic relaunches within 10 minutes"));
    am.ForgetServer(), onLaunch(); // the operator's Launch
    EXPECT_EQ(lose(3, RecoveryGuard::kWindowMs / 3 - 1), std::pair(6, 1));
    EXPECT_EQ(lose(1, 0), std::pair(6, 2)) << "the first of the three is within ten minutes";
    am.ForgetServer(), onLaunch();
    EXPECT_EQ(lose(6, 4 * 60 * 1000), std::pair(12, 2));
    // A key that cannot be sent loses the server too; every relaunch beeps.
    am.ForgetServer(), onLaunch();
    failKeys = true;
    am.QueueMessage("x");
    TypeLine();
    EXPECT_EQ(std::pair(launches, beeper.beeps), std::pair(13, 13));
}

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
