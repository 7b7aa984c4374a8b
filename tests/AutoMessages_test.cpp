#include "automation/AutoMessageHost.h"
#include "automation/AutoMessages.h"
#include "automation/KeySender.h"
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

// The main window and the key sender as the automatic messages see them, with everything one
// run needs and a launched server; a table row builds a fresh one.
struct Rig : AutoMessageHost, KeySender {
    Rig() {
        state.MessageRate = 3;
        server = windows.Add(kServerTitle);
        am.ServerLaunched(42);
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
    void Typist(int ticks) {
        for (int i = 0; i < ticks; ++i)
            am.TMRSend_Timer();
    }
    // Hands the next queued line to the typist and lets it finish.
    void TypeLine() {
        am.Timer1_Timer();
        for (int i = 0; i < 10000 && am.TMRSendEnabled(); ++i)
            am.TMRSend_Timer();
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
    int launches = 0, interval = 110;
    std::function<void()> onLaunch = [] {};

    AppState state;
    FakeWindowServices windows;
    ScriptedRandom random;
    BeepRecorder beeper;
    ScriptedMessageBoxes boxes;
    AutoMessages am{*this, state, windows, *this, random, beeper, boxes};
    WindowHandle server = 0;
};

class AutoMessagesTest : public Rig, public ::testing::Test {};

TEST_F(AutoMessagesTest, CountdownQueuesNonEmptyBoxesInOrderEveryIntervalWhileChecked) {
    servRecChecked = true;
    Countdown(10); // every box empty
    texts[0] = "first";
    texts[2] = "third";
    messageChecked = false;
    Countdown(10);
    messageChecked = true;
    EXPECT_TRUE(captions.isEmpty() && am.AddsSeconds() == 0);
    am.CHKMessage_Click(true);
    EXPECT_TRUE(addsTimer);

    Countdown(179);
    EXPECT_TRUE(am.Queue().isEmpty());
    EXPECT_EQ(captions.first(), "Next Auto Message due in 179 seconds.");
    Countdown(1);
    EXPECT_EQ(captions.last(), "Next Auto Message due in 0 seconds.");
    EXPECT_EQ(am.Queue(), QStringList({"first", "third"}));
    Countdown(180);
    EXPECT_EQ(captions.size(), 360);
    EXPECT_EQ(captions[180], "Next Auto Message due in 179 seconds.");
    EXPECT_EQ(am.Queue(), QStringList({"first", "third", "first", "third"}));

    // Unchecking "Auto Message" stops the countdown where it stands; the queue is still typed.
    am.Timer1_Timer();
    Countdown(100);
    Typist(3);
    am.CHKMessage_Click(false);
    EXPECT_FALSE(am.TMRAddsEnabled() || addsTimer || servRecEnabled || servRecChecked);
    Countdown(50);
    TypeLine();
    TypeLine();
    EXPECT_EQ(Typed(), "say first~say third~");

    am.CHKMessage_Click(true);
    EXPECT_TRUE(servRecEnabled);
    EXPECT_FALSE(servRecChecked) << "re-enabling does not check the box again";
    Countdown(1);
    EXPECT_EQ(captions.last(), "Next Auto Message due in 79 seconds.");
}

// A tilde inside a message is typed as its own key, not taken for the end of the line.
// Without a launched server each position is used up without typing.
TEST_F(AutoMessagesTest, TypesOneLineAtATimeOneCharacterPerTickAfterActivating) {
    for (const auto& [message, launched] :
         {std::pair<QString, bool>{"gg~bye", true}, {"hi", false}}) {
        SCOPED_TRACE(message.toStdString());
        Rig t;
        const QString line = "say " + message + "~";
        if (!launched)
            t.am.ForgetServer();
        t.am.QueueMessage(message);
        t.am.QueueMessage("b");
        t.am.Timer1_Timer();
        EXPECT_TRUE(t.sendTimer);
        t.Typist(line.size());
        t.am.Timer1_Timer();
        EXPECT_EQ(t.am.PendingLine(), line) << "no new line while one is typed";
        EXPECT_EQ(t.am.Queue(), QStringList({"b"}));
        EXPECT_EQ(t.pushed, launched ? line.split(QString(), Qt::SkipEmptyParts) : QStringList());
        EXPECT_EQ(t.windows.activations, QStringList(launched ? line.size() : 0, kServerTitle));

        t.Typist(1);
        EXPECT_TRUE(t.IdleTypist());
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

// Any failure of the typing step resets everything, then relaunches and beeps (the
// countdown goes on where it stood) or tells the operator once (the messages stop).
TEST_F(AutoMessagesTest, TypingFailureResetsEverythingThenRelaunchesOrTellsTheOperator) {
    for (const bool recover : {false, true}) {
        for (const bool consoleCloses : {true, false}) { // or a key cannot be sent
            SCOPED_TRACE(testing::Message() << consoleCloses << ", " << recover);
            Rig t;
            t.servRecChecked = recover;
            int beepsAtLaunch = -1;
            t.onLaunch = [&] {
                beepsAtLaunch = t.beeper.beeps;
                t.server = t.windows.Add(kServerTitle);
                t.am.ServerLaunched(77);
            };
            t.QueueBatch({"first", "second"});
            t.am.Timer1_Timer();
            t.Countdown(5);
            const int typedFirst = consoleCloses ? 3 : 0;
            t.Typist(typedFirst);
            if (consoleCloses)
                t.windows.Vanish(t.server);
            else
                t.failKeys = true;
            t.TypeLine();
            t.TypeLine();

            EXPECT_EQ(t.pushed.size(), typedFirst);
            EXPECT_EQ(t.boxes.shown, recover ? QList<MessageRequest>{} : QList{kServerError});
            // launches, beeps before the launch and in all, countdown, server handle
            EXPECT_EQ(std::tuple(t.launches, beepsAtLaunch, t.beeper.beeps, t.am.TMRAddsEnabled(),
                                 t.addsTimer, t.am.ServerHandle()),
                      recover ? std::tuple(1, 0, 1, true, true, 77u)
                              : std::tuple(0, -1, 0, false, false, 0u));
            EXPECT_TRUE(t.am.Queue().isEmpty() && t.IdleTypist());

            t.failKeys = false;
            t.Countdown(174);
            EXPECT_TRUE(t.am.Queue().isEmpty()) << "the countdown keeps its 5 seconds";
            t.Countdown(1);
            t.TypeLine();
            t.TypeLine();
            EXPECT_EQ(t.Typed().mid(typedFirst), recover ? "say first~say second~" : "");
        }
    }
}

// Decision: a console that exists but does not get the input focus is not a lost
// server. The character waits (typing it would send it to whatever window has the
// focus); after 10 seconds of waiting in a row the line is dropped without recovery.
TEST_F(AutoMessagesTest, StolenFocusHoldsTheLineAndDropsItAfterTenSecondsInARow) {
    const std::pair<int, int> rows[] = {{100, 100}, {110, 91}, {210, 48}, {10, 1000}};
    for (const auto& [interval, ticksToDrop] : rows) {
        SCOPED_TRACE(interval);
        Rig t;
        t.interval = interval;
        t.am.QueueMessage("lost");
        t.am.QueueMessage("next");
        t.am.Timer1_Timer();
        t.Typist(2);
        for (const bool stolen : {true, false, true}) { // one key between two long waits
            t.windows.focusStolen = stolen;
            t.Typist(stolen ? ticksToDrop - 1 : 1);
        }
        EXPECT_EQ(t.pushed, QStringList({"s", "a", "y"}));
        EXPECT_TRUE(t.am.TMRSendEnabled());
        t.Typist(1);
        EXPECT_TRUE(t.IdleTypist() && t.am.TMRAddsEnabled())
            << "the line goes, the countdown stays";
        EXPECT_TRUE(t.launches == 0 && t.boxes.shown.isEmpty()) << "no recovery";

        t.windows.focusStolen = false;
        t.TypeLine();
        EXPECT_EQ(t.Typed(), "say" + QString("say next~"));
    }
}

} // namespace
