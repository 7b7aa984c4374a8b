#include "automation/AutoMessageHost.h"
#include "automation/AutoMessages.h"
#include "server/AppState.h"

#include "FakeWindowServices.h"
#include "Recorders.h"
#include "RecordingKeySender.h"
#include "ScriptedMessageBoxes.h"
#include "Texts.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace {

using texts::kServerTitle;

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
    void Launch() override { ++launches, onLaunch(); }
    int TypistIntervalMs() override { return interval; }

    bool messageChecked = true, randomChecked = false, servRecChecked = false;
    bool servRecEnabled = true, addsTimer = false, sendTimer = false;
    QString texts[4];
    QStringList captions;
    int launches = 0, interval = 110;
    std::function<void()> onLaunch = [] {};
};

const MessageRequest kServerError{
    "Red Faction Dedicated Server Cannot be found or is not responding. Please varify the "
    "server is running and try again",
    "Server Error", MsgButtons::OK, MsgIcon::None, MsgDefault::First};

// Everything one run needs; a table row builds a fresh one.
struct Rig {
    Rig() {
        state.MessageRate = 3;
        server = windows.Add(kServerTitle);
        am.ServerLaunched(42);
    }

    void Countdown(int seconds) {
        for (int i = 0; i < seconds; ++i)
            am.TMRAdds_Timer();
    }
    void Typist(int ticks) {
        for (int i = 0; i < ticks; ++i)
            am.TMRSend_Timer();
    }
    void TypeLine() {
        for (int i = 0; i < 10000 && am.TMRSendEnabled(); ++i)
            am.TMRSend_Timer();
    }
    // Fills the first boxes, checks "Auto Message" and runs one whole interval.
    void QueueBatch(const QStringList& texts) {
        for (int k = 0; k < texts.size(); ++k)
            host.texts[k] = texts[k];
        am.CHKMessage_Click(true);
        Countdown(180);
    }
    QString Typed() const { return keys.pushed.join(QString()); }
    void ExpectIdleTypist() {
        EXPECT_TRUE(am.PendingLine().isEmpty());
        EXPECT_EQ(am.SendPos(), 0);
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

class AutoMessagesTest : public Rig, public ::testing::Test {};

TEST_F(AutoMessagesTest, CountdownQueuesNonEmptyBoxesInOrderEveryIntervalUntilUnchecked) {
    host.texts[0] = "first";
    host.texts[2] = "third";
    host.servRecChecked = true;
    am.CHKMessage_Click(true);
    EXPECT_TRUE(host.addsTimer);

    Countdown(179);
    EXPECT_TRUE(am.Queue().isEmpty());
    EXPECT_EQ(host.captions.first(), "Next Auto Message due in 179 seconds.");
    Countdown(1);
    EXPECT_EQ(host.captions.last(), "Next Auto Message due in 0 seconds.");
    EXPECT_EQ(am.Queue(), QStringList({"first", "third"}));

    Countdown(180);
    EXPECT_EQ(host.captions.size(), 360);
    EXPECT_EQ(host.captions[180], "Next Auto Message due in 179 seconds.");
    EXPECT_EQ(am.Queue(), QStringList({"first", "third", "first", "third"}));

    // Unchecking "Auto Message" stops the countdown where it stands; the queue is still typed.
    am.Timer1_Timer();
    Countdown(100);
    Typist(3);

    am.CHKMessage_Click(false);
    EXPECT_FALSE(am.TMRAddsEnabled());
    EXPECT_FALSE(host.addsTimer);
    EXPECT_FALSE(host.servRecEnabled);
    EXPECT_FALSE(host.servRecChecked);
    TypeLine();
    am.Timer1_Timer();
    TypeLine();
    EXPECT_EQ(Typed(), "say first~say third~");

    am.CHKMessage_Click(true);
    EXPECT_TRUE(host.servRecEnabled);
    EXPECT_FALSE(host.servRecChecked) << "re-enabling does not check the box again";
    Countdown(1);
    EXPECT_EQ(host.captions.last(), "Next Auto Message due in 79 seconds.");
}

TEST_F(AutoMessagesTest, CountdownStandsStillWhenNothingIsToBeSent) {
    const std::tuple<const char*, bool, bool, bool> rows[] = {
        {"all boxes empty", false, true, true},
        {"auto message unchecked", true, false, true},
        {"countdown stopped", true, true, false}};
    for (const auto& [name, text, checked, running] : rows) {
        SCOPED_TRACE(name);
        Rig t;
        t.host.texts[1] = text ? "x" : "";
        t.host.messageChecked = checked;
        if (!running)
            t.am.CHKMessage_Click(false);
        t.Countdown(500);
        EXPECT_EQ(t.am.AddsSeconds(), 0);
        EXPECT_TRUE(t.host.captions.isEmpty());
        EXPECT_TRUE(t.am.Queue().isEmpty());
    }
}

// A tilde inside a message is typed as its own key, not taken for the end of the line.
// Without a launched server each position is used up without typing.
TEST_F(AutoMessagesTest, TypesOneLineAtATimeOneCharacterPerTickAfterActivating) {
    for (const auto& [message, launched] :
         {std::pair<QString, bool>{"hello", true}, {"gg~bye", true}, {"hi", false}}) {
        SCOPED_TRACE(message.toStdString());
        Rig t;
        const QString line = "say " + message + "~";
        if (!launched)
            t.am.ForgetServer();
        t.am.QueueMessage(message);
        t.am.QueueMessage("b");
        t.am.Timer1_Timer();
        EXPECT_TRUE(t.host.sendTimer);
        t.Typist(line.size());
        t.am.Timer1_Timer();
        EXPECT_EQ(t.am.PendingLine(), line) << "no new line while one is typed";
        EXPECT_EQ(t.am.Queue(), QStringList({"b"}));
        EXPECT_EQ(t.keys.pushed,
                  launched ? line.split(QString(), Qt::SkipEmptyParts) : QStringList());
        EXPECT_EQ(t.windows.activations.size(), launched ? line.size() : 0);

        t.Typist(1);
        t.ExpectIdleTypist();
        t.am.Timer1_Timer();
        EXPECT_EQ(t.am.PendingLine(), "say b~");
        EXPECT_TRUE(t.am.Queue().isEmpty());
        t.TypeLine();
        EXPECT_EQ(t.Typed(), launched ? line + "say b~" : "");
        EXPECT_TRUE(t.boxes.shown.isEmpty());
    }
}

TEST_F(AutoMessagesTest, RandomPicksOneNonEmptyBoxFromTheGenerator) {
    // One interval for each expected pick.
    const std::tuple<QStringList, QList<double>, QStringList> rows[] = {
        {{"a", "b", "c", "d"}, {0.0, 0.24, 0.25, 0.5, 0.9999}, {"a", "a", "b", "c", "d"}},
        {{"", "", "c", ""}, {0.1, 0.3, 0.8, 0.6}, {"c"}},
        {{"", "", "", "d"}, {0.0, 0.25, 0.5, 0.75}, {"d"}},
        {{"", "", "", "d"}, QList<double>(20, 0.1) << 0.9, {"d"}}};
    for (const auto& [texts, script, expected] : rows) {
        SCOPED_TRACE(texts.join('|').toStdString());
        Rig t;
        t.host.randomChecked = true;
        t.random.script = script;
        t.QueueBatch(texts);
        t.Countdown(180 * (expected.size() - 1));
        EXPECT_EQ(t.am.Queue(), expected);
        EXPECT_TRUE(t.random.script.isEmpty()) << "every drawn number is used";
    }
}

// Any failure of the typing step resets everything, then relaunches (here in vain) or
// tells the operator once.
TEST_F(AutoMessagesTest, TypingFailureStopsEverythingAndRelaunchesOrTellsTheOperator) {
    enum Failure { ConsoleClosed, KeyRefused, SenderThrows };
    const std::pair<Failure, int> rows[] = {
        {ConsoleClosed, 0}, {ConsoleClosed, 3}, {KeyRefused, 0}, {SenderThrows, 0}};
    for (const bool recover : {false, true}) {
        for (const auto& [failure, typedFirst] : rows) {
            SCOPED_TRACE(testing::Message()
                         << failure << " after " << typedFirst << ", " << recover);
            Rig t;
            t.host.servRecChecked = recover;
            t.QueueBatch({"first", "second"});
            t.am.Timer1_Timer();
            t.Typist(typedFirst);
            if (failure == ConsoleClosed)
                t.windows.Remove(t.server);
            t.keys.failOnCall = failure == KeyRefused ? 1 : 0;
            if (failure == SenderThrows)
                t.keys.thrower = [](const QString&) { throw std::runtime_error("display gone"); };
            t.TypeLine();
            t.am.Timer1_Timer();
            t.TypeLine();

            EXPECT_EQ(t.keys.pushed.size(), typedFirst);
            EXPECT_EQ(t.boxes.shown, recover ? QList<MessageRequest>{} : QList{kServerError});
            EXPECT_EQ(t.host.launches, recover ? 1 : 0);
            EXPECT_EQ(t.beeper.beeps, recover ? 1 : 0);
            EXPECT_TRUE(t.am.Queue().isEmpty());
            EXPECT_FALSE(t.am.TMRAddsEnabled());
            EXPECT_FALSE(t.host.addsTimer);
            EXPECT_EQ(t.am.ServerHandle(), 0u);
            t.ExpectIdleTypist();
        }
    }
}

TEST_F(AutoMessagesTest, RecoveryRelaunchesThenBeepsAndKeepsTheCountdown) {
    host.servRecChecked = true;
    int beepsAtLaunch = -1;
    host.onLaunch = [&] {
        beepsAtLaunch = beeper.beeps;
        server = windows.Add(kServerTitle);
        am.ServerLaunched(77);
    };
    QueueBatch({"welcome"});
    am.Timer1_Timer();
    Countdown(5);
    Typist(2);
    windows.Remove(server);
    Typist(1);
    EXPECT_EQ(beepsAtLaunch, 0);
    EXPECT_EQ(beeper.beeps, 1);
    EXPECT_TRUE(host.addsTimer);

    Countdown(174);
    EXPECT_TRUE(am.Queue().isEmpty()) << "the countdown keeps its 5 seconds";
    Countdown(1);
    am.Timer1_Timer();
    TypeLine();
    EXPECT_EQ(Typed(), "sa" + QString("say welcome~"));
}

// Decision: a console that exists but does not get the input focus is not a lost
// server. The character waits (typing it would send it to whatever window has the
// focus); after 10 seconds of waiting in a row the line is dropped without recovery.
TEST_F(AutoMessagesTest, StolenFocusHoldsTheLineAndDropsItAfterTenSecondsInARow) {
    const std::pair<int, int> rows[] = {{100, 100}, {110, 91}, {210, 48}, {10, 1000}};
    for (const auto& [interval, ticksToDrop] : rows) {
        SCOPED_TRACE(interval);
        Rig t;
        t.host.interval = interval;
        t.am.QueueMessage("lost");
        t.am.QueueMessage("next");
        t.am.Timer1_Timer();
        t.Typist(2);
        for (const bool stolen : {true, false, true}) { // one key between two long waits
            t.windows.focusStolen = stolen;
            t.Typist(stolen ? ticksToDrop - 1 : 1);
        }
        EXPECT_EQ(t.keys.pushed, QStringList({"s", "a", "y"}));
        EXPECT_TRUE(t.am.TMRSendEnabled());
        t.Typist(1);
        t.ExpectIdleTypist();
        EXPECT_EQ(t.host.launches, 0);
        EXPECT_TRUE(t.boxes.shown.isEmpty());
        EXPECT_TRUE(t.am.TMRAddsEnabled());

        t.windows.focusStolen = false;
        t.am.Timer1_Timer();
        t.TypeLine();
        EXPECT_EQ(t.Typed(), "say" + QString("say next~"));
    }
}

} // namespace
