#include "automation/AutoMessages.h"

#include "automation/AutoMessageHost.h"
#include "automation/KeySender.h"
#include "automation/Module2.h"
#include "platform/Beeper.h"
#include "platform/MessageBoxes.h"
#include "platform/RandomSource.h"
#include "platform/WindowServices.h"
#include "server/AppState.h"

#include <algorithm>
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
      messages_(messages) {}

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
    if (activation == ActivateResult::NoDisplay) {
        StopWithoutDisplay();
        return;
    }
    if (activation == ActivateResult::NotFocused) {
        // The console is there but something else holds the focus: typing now would
        // send the keys to that window. Try this character again on the next tick.
        --SendPos_;
        focusWaitMs_ += host_.TypistIntervalMs();
        if (focusWaitMs_ >= kFocusPatienceMs) {
            DropPendingLine();
            TellOnce(toldNotFocused_,
                     "An automatic message was dropped: the server console never got the "
                     "keyboard focus, so it could not be typed into. Bring the console to this "
                     "workspace, or use a window manager that lets programs activate windows. "
                     "Messages dropped later for the same reason are not reported again.");
        }
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

void AutoMessages::StopWithoutDisplay() {
    // Relaunching would not help: the server is fine, there is nothing to type with.
    DropPendingLine();
    LSTBuff_.clear();
    SetTMRAddsEnabled(false);
    TellOnce(toldNoDisplay_,
             "Automatic messages cannot be typed into the server console: typing needs an X11 "
             "display (Xwayland), and this desktop session has none. The server keeps running. "
             "Start Hostwarden in a session with Xwayland to send messages.");
}

void AutoMessages::TellOnce(bool& told, const QString& text) {
    if (told)
        return;
    told = true;
    messages_.Show({text, "Auto Message", MsgButtons::OK, MsgIcon::Information, MsgDefault::First});
}

void AutoMessages::RecoverServer() {
    SendPos_ = 0;
    SetTMRAddsEnabled(false);
    SetTMRSendEnabled(false);
    PendingLine_.clear();
    LSTBuff_.clear();
    ServerHandle_ = 0;
    focusWaitMs_ = 0;

    if (host_.ServRecChecked()) {
        host_.Launch();
        beeper_.Beep();
    } else {
        messages_.Show({"Red Faction Dedicated Server Cannot be found or is not responding. "
                        "Please varify the server is running and try again",
                        "Server Error", MsgButtons::OK, MsgIcon::None, MsgDefault::First});
    }
}

void AutoMessages::ForgetServer() {
    ServerHandle_ = 0;
}

void AutoMessages::ServerLaunched(std::uint32_t handle) {
    ServerHandle_ = handle;
    if (handle != 0)
        SetTMRAddsEnabled(true);
}

void AutoMessages::SetTMRAddsEnabled(bool enabled) {
    addsEnabled_ = enabled;
    host_.EnableAddsTimer(enabled);
}

void AutoMessages::SetTMRSendEnabled(bool enabled) {
    sendEnabled_ = enabled;
    host_.EnableSendTimer(enabled);
}
