#include "automation/AutoMessageHost.h"
#include "automation/AutoMessages.h"
#include "server/AppState.h"

#include "FakeWindowServices.h"
#include "Recorders.h"
#include "RecordingKeySender.h"
#include "ScriptedMessageBoxes.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace {

const QString kServerTitle = "Red Faction Dedicated Server";

class FakeHost : public AutoMessageHost {
public:
    bool MessageChecked() override { return messageChecked; }
    bool RandomChecked() override { return randomChecked; }
    bool ServRecChecked() override { return servRecChecked; }
    QString MessageText(int index) override { return texts[index]; }
    void SetCountCaption(const QString& caption) override { captions.append(caption); }
    void EnableAddsTimer(bool enabled) override { addsTimer = enabled; }
    void EnableSendTimer(bool enabled) override { sendTimer = enabled; }
    void EnableServRec(bool enabled) override { servRecEnabled = enabled; }
    void UncheckServRec() override { servRecChecked = false; }
    void Launch() override {
        ++launches;
        if (onLaunch)
            onLaunch();
    }
    int TypistIntervalMs() override { return interval; }

    bool messageChecked = true;
    bool randomChecked = false;
    bool servRecChecked = false;
    bool servRecEnabled = true;
    QString texts[4];
    QStringList captions;
    bool addsTimer = false;
    bool sendTimer = false;
    int launches = 0;
    std::function<void()> onLaunch;
    int interval = 110;
};

const MessageRequest kServerError{
    "Red Faction Dedicated Server Cannot be found or is not responding. Please varify the "
    "server is running and try again",
    "Server Error", MsgButtons::OK, MsgIcon::None, MsgDefault::First};

class AutoMessagesTest : public ::testing::Test {
public:
    void SetUp() override {
        state.MessageRate = 3;
        server = windows.Add(kServerTitle);
        am.ServerHandle = 42;
    }

    void Countdown(int seconds) {
        for (int i = 0; i < seconds; ++i)
            am.TMRAdds_Timer();
    }
    void Typist(int ticks) {
        for (int i = 0; i < ticks; ++i)
            am.TMRSend_Timer();
    }
    // Runs the typist until it falls idle; returns the number of ticks.
    int TypeLine() {
        int ticks = 0;
        while (am.TMRSendEnabled() && ticks < 10000) {
            am.TMRSend_Timer();
            ++ticks;
        }
        return ticks;
    }
    QString Typed() const { return keys.pushed.join(QString()); }
    void ExpectIdleTypist() {
        EXPECT_TRUE(am.PendingLine.isEmpty());
        EXPECT_EQ(am.SendPos, 0);
        EXPECT_FALSE(am.TMRSendEnabled());
        EXPECT_FALSE(host.sendTimer);
    }

    AppState state;
    FakeHost host;
    FakeWindowServices windows;
    RecordingKeySender keys;
    SeededRandom random{7};
    BeepRecorder beeper;
    ScriptedMessageBoxes boxes;
    AutoMessages am{host, state, windows, keys, random, beeper, boxes};
    WindowHandle server = 0;
};

TEST_F(AutoMessagesTest, CountdownQueuesNonEmptyBoxesInOrderEveryInterval) {
    host.texts[0] = "first";
    host.texts[2] = "third";
    am.CHKMessage_Click(true);
    EXPECT_TRUE(host.addsTimer);

    Countdown(179);
    EXPECT_TRUE(am.LSTBuff.isEmpty());
    EXPECT_EQ(host.captions.first(), "Next Auto Message due in 179 seconds.");
    EXPECT_EQ(host.captions.last(), "Next Auto Message due in 1 seconds.");

    Countdown(1);
    EXPECT_EQ(host.captions.last(), "Next Auto Message due in 0 seconds.");
    EXPECT_EQ(am.LSTBuff, QStringList({"first", "third"}));
    EXPECT_EQ(am.AddsSeconds, 0);

    Countdown(180);
    EXPECT_EQ(host.captions.size(), 360);
    EXPECT_EQ(host.captions[180], "Next Auto Message due in 179 seconds.");
    EXPECT_EQ(am.LSTBuff, QStringList({"first", "third", "first", "third"}));
}

TEST_F(AutoMessagesTest, CountdownStandsStillWhenNothingIsToBeSent) {
    struct Row {
        const char* name;
        std::function<void(AutoMessagesTest&)> arrange;
    };
    const Row rows[] = {
        {"all boxes empty", [](AutoMessagesTest&) {}},
        {"auto message unchecked",
         [](AutoMessagesTest& t) {
             t.host.texts[1] = "x";
             t.host.messageChecked = false;
         }},
        {"countdown stopped",
         [](AutoMessagesTest& t) {
             t.host.texts[1] = "x";
             t.am.SetTMRAddsEnabled(false);
         }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        host = FakeHost{};
        am.AddsSeconds = 17;
        am.SetTMRAddsEnabled(true);
        row.arrange(*this);
        Countdown(500);
        EXPECT_EQ(am.AddsSeconds, 17);
        EXPECT_TRUE(host.captions.isEmpty());
        EXPECT_TRUE(am.LSTBuff.isEmpty());
    }
}

TEST_F(AutoMessagesTest, CountdownResumesWhereItStoodAfterOffAndOn) {
    host.texts[3] = "m";
    am.CHKMessage_Click(true);
    Countdown(100);
    am.CHKMessage_Click(false);
    Countdown(30);
    am.CHKMessage_Click(true);
    Countdown(1);
    EXPECT_EQ(host.captions.last(), "Next Auto Message due in 79 seconds.");
}

TEST_F(AutoMessagesTest, TypesTheChatCommandOneCharacterPerTick) {
    am.QueueMessage("hello");
    am.Timer1_Timer();
    EXPECT_EQ(am.PendingLine, "say hello~");
    EXPECT_TRUE(host.sendTimer);
    EXPECT_TRUE(am.LSTBuff.isEmpty());

    Typist(10);
    EXPECT_EQ(keys.pushed, QStringList({"s", "a", "y", " ", "h", "e", "l", "l", "o", "~"}));
    EXPECT_EQ(windows.activations.size(), 10) << "the console is activated before each key";
    EXPECT_TRUE(am.TMRSendEnabled());

    Typist(1);
    EXPECT_EQ(keys.pushed.size(), 10);
    ExpectIdleTypist();
}

TEST_F(AutoMessagesTest, TildeInsideAMessageIsTypedAsItsOwnKey) {
    am.QueueMessage("gg~bye");
    am.Timer1_Timer();
    EXPECT_EQ(TypeLine(), 12);
    EXPECT_EQ(keys.pushed.size(), 11);
    EXPECT_EQ(keys.pushed[6], "~");
    EXPECT_EQ(Typed(), "say gg~bye~");
}

TEST_F(AutoMessagesTest, DispatcherHandsTheNextMessageOnlyWhenTheTypistIsIdle) {
    am.QueueMessage("a");
    am.QueueMessage("b");
    am.Timer1_Timer();
    EXPECT_EQ(am.PendingLine, "say a~");

    Typist(6); // "say a~" is 6 characters: all typed, line not yet closed
    am.Timer1_Timer();
    EXPECT_EQ(am.PendingLine, "say a~");
    EXPECT_EQ(am.LSTBuff, QStringList({"b"}));

    Typist(1);
    ExpectIdleTypist();
    am.Timer1_Timer();
    EXPECT_EQ(am.PendingLine, "say b~");
    EXPECT_TRUE(am.LSTBuff.isEmpty());
    TypeLine();
    EXPECT_EQ(Typed(), "say a~say b~");
}

TEST_F(AutoMessagesTest, RandomPicksOneNonEmptyBoxFromTheGenerator) {
    struct Row {
        const char* name;
        QStringList texts;
        QList<double> script;
        QString expected;
    };
    const Row rows[] = {
        {"0.0 is box 0", {"a", "b", "c", "d"}, {0.0}, "a"},
        {"0.24 is box 0", {"a", "b", "c", "d"}, {0.24}, "a"},
        {"0.25 is box 1", {"a", "b", "c", "d"}, {0.25}, "b"},
        {"0.5 is box 2", {"a", "b", "c", "d"}, {0.5}, "c"},
        {"0.9999 is box 3", {"a", "b", "c", "d"}, {0.9999}, "d"},
        {"empty boxes are drawn again", {"", "", "c", ""}, {0.1, 0.3, 0.8, 0.6}, "c"},
        {"only box 3 filled", {"", "", "", "d"}, {0.0, 0.25, 0.5, 0.75}, "d"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        host = FakeHost{};
        host.randomChecked = true;
        for (int k = 0; k < 4; ++k)
            host.texts[k] = row.texts[k];
        random.script = row.script;
        am.LSTBuff.clear();
        am.AddsSeconds = 0;
        am.SetTMRAddsEnabled(true);
        Countdown(180);
        EXPECT_EQ(am.LSTBuff, QStringList({row.expected}));
        EXPECT_TRUE(random.script.isEmpty()) << "every drawn number is used";
    }
}

TEST_F(AutoMessagesTest, RandomWithOnlyTheLastBoxFilledAlwaysPicksIt) {
    host.randomChecked = true;
    host.texts[3] = "only";
    am.SetTMRAddsEnabled(true);
    Countdown(180 * 20);
    EXPECT_EQ(am.LSTBuff, QStringList(20, "only"));
}

TEST_F(AutoMessagesTest, UncheckingAutoMessageStopsTheCountdownButNotTheTypist) {
    host.texts[0] = "one";
    host.texts[1] = "two";
    host.servRecChecked = true;
    am.CHKMessage_Click(true);
    Countdown(180);
    am.Timer1_Timer();
    Typist(3);

    host.messageChecked = false;
    am.CHKMessage_Click(false);
    EXPECT_FALSE(am.TMRAddsEnabled());
    EXPECT_FALSE(host.addsTimer);
    EXPECT_FALSE(host.servRecEnabled);
    EXPECT_FALSE(host.servRecChecked);
    EXPECT_TRUE(am.TMRSendEnabled());

    TypeLine();
    am.Timer1_Timer();
    TypeLine();
    EXPECT_EQ(Typed(), "say one~say two~");

    const int captions = host.captions.size();
    Countdown(600);
    EXPECT_EQ(host.captions.size(), captions);

    am.CHKMessage_Click(true);
    EXPECT_TRUE(host.servRecEnabled);
    EXPECT_FALSE(host.servRecChecked) << "re-enabling does not check the box again";
}

TEST_F(AutoMessagesTest, WithoutALaunchedServerLinesAreUsedUpSilently) {
    am.ServerHandle = 0;
    am.QueueMessage("hi");
    am.QueueMessage("yo");
    am.Timer1_Timer();
    Typist(3);
    EXPECT_EQ(am.SendPos, 3);
    EXPECT_EQ(TypeLine(), 5); // "say hi~" takes 7 + 1 ticks in all
    am.Timer1_Timer();
    EXPECT_EQ(am.PendingLine, "say yo~");
    TypeLine();

    EXPECT_TRUE(keys.pushed.isEmpty());
    EXPECT_TRUE(windows.activations.isEmpty());
    EXPECT_TRUE(boxes.shown.isEmpty());
    ExpectIdleTypist();
}

// Any failure of the typing step resets everything and, with recovery off, tells the
// operator once.
TEST_F(AutoMessagesTest, TypingFailureWithoutRecoveryStopsEverythingAndTellsTheOperator) {
    struct Row {
        const char* name;
        std::function<void(AutoMessagesTest&)> arrange;
        int typedBeforeFailure;
    };
    const Row rows[] = {
        {"console closed before the line", [](AutoMessagesTest& t) { t.windows.Remove(t.server); },
         0},
        {"console closed mid-line",
         [](AutoMessagesTest& t) {
             t.keys.thrower = [&t](const QString&) {
                 if (t.keys.pushed.size() == 2)
                     t.windows.Remove(t.server);
             };
         },
         3},
        {"key cannot be sent", [](AutoMessagesTest& t) { t.keys.failOnCall = 1; }, 0},
        {"other exception from the sender",
         [](AutoMessagesTest& t) {
             t.keys.thrower = [](const QString&) { throw std::runtime_error("display gone"); };
         },
         0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        windows.windows.clear();
        server = windows.Add(kServerTitle);
        keys = RecordingKeySender{};
        boxes.shown.clear();
        host.texts[0] = "first";
        host.texts[1] = "second";
        am.ServerHandle = 42;
        am.AddsSeconds = 0;
        am.CHKMessage_Click(true);
        Countdown(180);
        am.Timer1_Timer();
        row.arrange(*this);

        TypeLine();
        am.Timer1_Timer();
        TypeLine();

        EXPECT_EQ(keys.pushed.size(), row.typedBeforeFailure);
        EXPECT_EQ(boxes.shown, QList<MessageRequest>({kServerError}));
        EXPECT_TRUE(am.LSTBuff.isEmpty());
        EXPECT_FALSE(am.TMRAddsEnabled());
        EXPECT_FALSE(host.addsTimer);
        EXPECT_EQ(am.ServerHandle, 0u);
        ExpectIdleTypist();
        EXPECT_EQ(host.launches, 0);
        EXPECT_EQ(beeper.beeps, 0);
    }
}

TEST_F(AutoMessagesTest, RecoveryRelaunchesThenBeepsAndKeepsTheCountdown) {
    host.texts[0] = "welcome";
    host.servRecChecked = true;
    int beepsAtLaunch = -1;
    host.onLaunch = [&] {
        beepsAtLaunch = beeper.beeps;
        server = windows.Add(kServerTitle);
        am.ServerHandle = 77;
        am.SetTMRAddsEnabled(true);
    };
    am.CHKMessage_Click(true);
    Countdown(180);
    am.Timer1_Timer();
    Countdown(5);
    Typist(2);
    windows.Remove(server);
    am.QueueMessage("queued");

    Typist(1);
    EXPECT_EQ(host.launches, 1);
    EXPECT_EQ(beepsAtLaunch, 0);
    EXPECT_EQ(beeper.beeps, 1);
    EXPECT_TRUE(boxes.shown.isEmpty());
    EXPECT_TRUE(am.LSTBuff.isEmpty()) << "queued messages are dropped, not retried";
    ExpectIdleTypist();
    EXPECT_EQ(am.AddsSeconds, 5);
    EXPECT_TRUE(host.addsTimer);

    Countdown(174);
    EXPECT_TRUE(am.LSTBuff.isEmpty());
    Countdown(1);
    am.Timer1_Timer();
    TypeLine();
    EXPECT_EQ(Typed(), "sa"
                       "say welcome~");
}

TEST_F(AutoMessagesTest, FailedRelaunchStillBeepsAndLeavesMessagesStopped) {
    host.texts[0] = "x";
    host.servRecChecked = true;
    am.CHKMessage_Click(true);
    am.QueueMessage("x");
    am.Timer1_Timer();
    windows.Remove(server);
    Typist(1);

    EXPECT_EQ(host.launches, 1);
    EXPECT_EQ(beeper.beeps, 1);
    EXPECT_EQ(am.ServerHandle, 0u);
    EXPECT_FALSE(am.TMRAddsEnabled());
    Countdown(400);
    EXPECT_TRUE(am.LSTBuff.isEmpty());
}

// Decision: a console that exists but does not get the input focus is not a lost
// server. The character waits (typing it would send it to whatever window has the
// focus); after 10 seconds of waiting in a row the line is dropped without recovery.
TEST_F(AutoMessagesTest, StolenFocusHoldsTheLineAndDropsItAfterTenSeconds) {
    struct Row {
        int interval;
        int ticksToDrop;
    };
    for (const Row row : {Row{100, 100}, Row{110, 91}, Row{210, 48}, Row{10, 1000}}) {
        SCOPED_TRACE(row.interval);
        keys = RecordingKeySender{};
        am.LSTBuff.clear();
        host.interval = row.interval;
        windows.focusStolen = false;
        am.SetTMRAddsEnabled(true);
        am.QueueMessage("lost");
        am.QueueMessage("next");
        am.Timer1_Timer();
        Typist(2);
        windows.focusStolen = true;

        Typist(row.ticksToDrop - 1);
        EXPECT_EQ(keys.pushed, QStringList({"s", "a"}));
        EXPECT_EQ(am.SendPos, 2);
        EXPECT_EQ(am.PendingLine, "say lost~");
        EXPECT_TRUE(am.TMRSendEnabled());

        Typist(1);
        ExpectIdleTypist();
        EXPECT_EQ(host.launches, 0);
        EXPECT_TRUE(boxes.shown.isEmpty());
        EXPECT_EQ(am.ServerHandle, 42u);
        EXPECT_TRUE(am.TMRAddsEnabled());

        windows.focusStolen = false;
        am.Timer1_Timer();
        TypeLine();
        EXPECT_EQ(Typed(), "sa"
                           "say next~");
    }
}

TEST_F(AutoMessagesTest, ShortStolenFocusDelaysTheLineButLosesNothing) {
    host.interval = 100;
    am.QueueMessage("hello");
    am.Timer1_Timer();
    Typist(3);
    windows.focusStolen = true;
    Typist(60);
    windows.focusStolen = false;
    Typist(1);
    windows.focusStolen = true;
    Typist(60); // 12 s stolen in all, but never 10 s in a row
    windows.focusStolen = false;
    TypeLine();

    EXPECT_EQ(keys.pushed, QStringList({"s", "a", "y", " ", "h", "e", "l", "l", "o", "~"}));
    EXPECT_TRUE(boxes.shown.isEmpty());
    ExpectIdleTypist();
}

} // namespace
