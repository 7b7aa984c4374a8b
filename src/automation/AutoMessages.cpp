#include "automation/AutoMessages.h"

#include "automation/AutoMessageHost.h"
#include "automation/KeySender.h"
#include "automation/Module2.h"
#include "automation/WatchMessages.h"
#include "platform/Beeper.h"
#include "platform/MessageBoxes.h"
#include "platform/ProcessLauncher.h"
#include "platform/RandomSource.h"
#include "platform/WindowServices.h"
#include "server/AppState.h"

#include <algorithm>
#include <chrono>
#include <exception>

namespace {

constexpr int kMessageBoxes = 4;

bool AllMessagesEmpty(AutoMessageHost& host) {
    for (int k = 0; k < kMessageBoxes; ++k)
        if (!host.MessageText(k).isEmpty())
            return false;
    return true;
}

} // namespace

AutoMessages::AutoMessages(AutoMessageHost& host, const AppState& state, WindowServices& windows,
                           KeySender& keys, RandomSource& random, Beeper& beeper,
                           MessageBoxes& messages)
    : host_(host), state_(state), windows_(windows), keys_(keys), random_(random), beeper_(beeper),
      messages_(messages) {
    SetClock({});
}

void AutoMessages::QueueMessage(const QString& text) {
    if (text.isEmpty())
        return;
    LSTBuff_.append(text);
}

void AutoMessages::CHKMessage_Click(bool checked) {
    if (checked) {
        SetTMRAddsEnabled(true);
        host_.EnableServRec(true);
    } else {
        SetTMRAddsEnabled(false);
        host_.EnableServRec(false);
        host_.UncheckServRec();
    }
}

void AutoMessages::TMRAdds_Timer() {
    if (!addsEnabled_)
        return;
    if (!host_.MessageChecked())
        return;
    if (AllMessagesEmpty(host_))
        return;

    ++AddsSeconds_;
    const int due = int(state_.MessageRate) * 60;
    host_.SetCountCaption("Next Auto Message due in " + QString::number(due - AddsSeconds_) +
                          " seconds.");
    if (AddsSeconds_ != due)
        return;

    QueueDueMessages();
    AddsSeconds_ = 0;
}

void AutoMessages::QueueDueMessages() {
    if (!host_.RandomChecked()) {
        for (int k = 0; k < kMessageBoxes; ++k)
            QueueMessage(host_.MessageText(k));
        return;
    }
    // At least one box holds text (checked by the caller), so this ends.
    QString text;
    do {
        const int k = std::clamp(int(4 * random_.Next()), 0, kMessageBoxes - 1);
        text = host_.MessageText(k);
    } while (text.isEmpty());
    QueueMessage(text);
}

void AutoMessages::Timer1_Timer() {
    if (LSTBuff_.isEmpty() || sendEnabled_ || !PendingLine_.isEmpty())
        return;
    PendingLine_ = "say " + LSTBuff_.first() + "~";
    focusWaitMs_ = 0;
    SetTMRSendEnabled(true);
    LSTBuff_.removeFirst();
}

void AutoMessages::TMRSend_Timer() {
    if (!sendEnabled_)
        return;
    ++SendPos_;
    if (SendPos_ == PendingLine_.size() + 1) {
        SendPos_ = 0;
        SetTMRSendEnabled(false);
        PendingLine_.clear();
        return;
    }
    if (ServerHandle_ != 0)
        TypeCurrentCharacter();
    // Without a launched server the position is used up without typing.
}

void AutoMessages::TypeCurrentCharacter() {
    ActivateResult activation;
    try {
        activation = ActivateServerWindow(windows_);
    } catch (const std::exception&) {
        activation = ActivateResult::NotFound;
    }

    if (activation == ActivateResult::NotFound) {
        RecoverServer();
        return;
    }
    if (activation == ActivateResult::NotFocused) {
        // The console is there but something else holds the focus: typing now would
        // send the keys to that window. Try this character again on the next tick.
        --SendPos_;
        focusWaitMs_ += host_.TypistIntervalMs();
        if (focusWaitMs_ >= kFocusPatienceMs)
            DropPendingLine();
        return;
    }

    focusWaitMs_ = 0;
    try {
        keys_.PushKeys(PendingLine_.mid(SendPos_ - 1, 1));
    } catch (const std::exception&) {
        RecoverServer();
    }
}

void AutoMessages::DropPendingLine() {
    PendingLine_.clear();
    SendPos_ = 0;
    focusWaitMs_ = 0;
    SetTMRSendEnabled(false);
}

void AutoMessages::RecoverServer() {
    Recover(nullptr);
}

void AutoMessages::ServerExited(const ProgramExit& exit) {
    if (ServerHandle_ == 0 || watched_ == 0 || exit.process != watched_)
        return; // not the server this program launched last
    Recover(&exit);
}

void AutoMessages::Recover(const ProgramExit* exit) {
    const bool failedStart =
        exit && !exit->signalled && exit->status != 0 && now_() - launchedAtMs_ < kFailedStartMs;
    SendPos_ = 0;
    SetTMRAddsEnabled(false);
    SetTMRSendEnabled(false);
    PendingLine_.clear();
    LSTBuff_.clear();
    ServerHandle_ = 0;
    focusWaitMs_ = 0;
    watched_ = 0;

    if (host_.ServRecChecked()) {
        if (!guard_.Allow(now_())) {
            messages_.Show(RecoveryStoppedMessage(guard_.Count(), exit, failedStart));
            return;
        }
        relaunching_ = true;
        host_.Launch();
        relaunching_ = false;
        beeper_.Beep();
    } else if (failedStart) {
        messages_.Show(FailedStartMessage(*exit));
    } else {
        messages_.Show({"Red Faction Dedicated Server Cannot be found or is not responding. "
                        "Please varify the server is running and try again",
                        "Server Error", MsgButtons::OK, MsgIcon::None, MsgDefault::First});
    }
}

void AutoMessages::ForgetServer() {
    ServerHandle_ = 0;
    watched_ = 0;
    if (!relaunching_)
        guard_.Reset();
}

void AutoMessages::ServerLaunched(std::uint32_t handle) {
    ServerHandle_ = handle;
    if (handle != 0)
        SetTMRAddsEnabled(true);
}

void AutoMessages::SetClock(std::function<std::int64_t()> nowMs) {
    now_ = nowMs ? std::move(nowMs) : [] {
        using namespace std::chrono;
        return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    };
}

void AutoMessages::WatchServer(std::int64_t process) {
    watched_ = ServerHandle_ != 0 ? process : 0;
    launchedAtMs_ = now_();
}

void AutoMessages::SetTMRAddsEnabled(bool enabled) {
    addsEnabled_ = enabled;
    host_.EnableAddsTimer(enabled);
}

void AutoMessages::SetTMRSendEnabled(bool enabled) {
    sendEnabled_ = enabled;
    host_.EnableSendTimer(enabled);
}
