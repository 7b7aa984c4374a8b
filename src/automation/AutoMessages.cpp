#include "automation/AutoMessages.h"

#include "automation/AutoMessageHost.h"
#include "automation/KeySender.h"
#include "automation/Module2.h"
#include "automation/WatchMessages.h"
#include "platform/Ansi.h"
#include "platform/Beeper.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "platform/ProcessLauncher.h"
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
                           MessageBoxes& messages, Clock& clock)
    : host_(host), state_(state), windows_(windows), keys_(keys), random_(random), beeper_(beeper),
      messages_(messages), clock_(clock) {}

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
    pendingChars_ = PendingLine_.toStdU32String();
    waitingSince_ = -1;
    SetTMRSendEnabled(true);
    LSTBuff_.removeFirst();
}

void AutoMessages::TMRSend_Timer() {
    if (!sendEnabled_)
        return;
    ++SendPos_;
    if (std::size_t(SendPos_) == pendingChars_.size() + 1) {
        SendPos_ = 0;
        SetTMRSendEnabled(false);
        PendingLine_.clear();
        pendingChars_.clear();
        return;
    }
    if (ServerHandle_ != 0)
        TypeCurrentCharacter();
    // Without a launched server the position is used up without typing.
}

void AutoMessages::TypeCurrentCharacter() {
    // The operator is answering one of our questions: the keyboard is theirs.
    if (messages_.IsShowing()) {
        --SendPos_;
        waitingSince_ = -1;
        return;
    }
    if (!windows_.HasDisplay()) {
        StopWithoutDisplay();
        return;
    }
    WindowHandle console = FindServerWindow(windows_, serverProcess_);
    const bool starting = clock_.NowMs() < graceUntil_;
    // Right after a launch the old console may still be closing; only the new one counts.
    if (starting && console && serverProcess_ != 0 &&
        !windows_.InProcessTree(console, serverProcess_))
        console = 0;
    if (!console) {
        if (starting) {
            --SendPos_;
            return;
        }
        RecoverServer();
        return;
    }
    graceUntil_ = 0;

    windows_.ActivateWindow(console);
    if (!windows_.HasFocus(console)) {
        // Typing now would send the key to whatever window has the focus.
        WaitForFocus();
        return;
    }
    waitingSince_ = -1;
    // One character of the ANSI code page; anything else is typed as "?".
    const char32_t ch = FromAnsi(ToAnsi(pendingChars_[std::size_t(SendPos_ - 1)]));
    try {
        keys_.PushKeys(QString::fromUcs4(&ch, 1));
    } catch (const std::exception&) {
        RecoverServer();
    }
}

void AutoMessages::WaitForFocus() {
    --SendPos_;
    const std::int64_t now = clock_.NowMs();
    if (waitingSince_ < 0) {
        waitingSince_ = now;
        return;
    }
    if (now - waitingSince_ < kFocusPatienceMs)
        return;
    const QString line = PendingLine_;
    DropPendingLine();
    messages_.Notify({"The Red Faction Dedicated Server console did not take the keyboard "
                      "for 10 seconds, so this line was not sent:\r\n" +
                          line,
                      "Auto Message", MsgButtons::OK, MsgIcon::Information, MsgDefault::First});
}

void AutoMessages::DropPendingLine() {
    PendingLine_.clear();
    pendingChars_.clear();
    SendPos_ = 0;
    waitingSince_ = -1;
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
    Recover(nullptr);
}

void AutoMessages::ServerExited(const ProgramExit& exit) {
    if (ServerHandle_ == 0 || watched_ == 0 || exit.process != watched_)
        return; // not the server this program launched last
    Recover(&exit);
}

void AutoMessages::Recover(const ProgramExit* exit) {
    if (!windows_.HasDisplay()) {
        // A server without a display to open its window on ends at once; relaunching it
        // cannot help, and the reason is the one the operator needs to hear.
        ServerHandle_ = 0;
        watched_ = 0;
        StopWithoutDisplay();
        return;
    }
    const bool failedStart = exit && !exit->signalled && exit->status != 0 &&
                             clock_.NowMs() - launchedAtMs_ < kFailedStartMs;
    SendPos_ = 0;
    SetTMRAddsEnabled(false);
    SetTMRSendEnabled(false);
    PendingLine_.clear();
    pendingChars_.clear();
    LSTBuff_.clear();
    ServerHandle_ = 0;
    waitingSince_ = -1;
    watched_ = 0;

    if (host_.ServRecChecked()) {
        if (!guard_.Allow(clock_.NowMs())) {
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
    serverProcess_ = 0;
    graceUntil_ = 0;
    // The rest of a half-typed line would reach the new server as a command of its own.
    // The typist finds the line used up at its next tick and goes idle.
    PendingLine_.clear();
    pendingChars_.clear();
    SendPos_ = 0;
    waitingSince_ = -1;
    watched_ = 0;
    if (!relaunching_)
        guard_.Reset();
}

void AutoMessages::ServerLaunched(std::uint32_t handle, std::int64_t process) {
    ServerHandle_ = handle;
    if (handle == 0)
        return;
    serverProcess_ = process;
    graceUntil_ = clock_.NowMs() + kLaunchGraceMs;
    SetTMRAddsEnabled(true);
}

void AutoMessages::WatchServer(std::int64_t process) {
    watched_ = ServerHandle_ != 0 ? process : 0;
    launchedAtMs_ = clock_.NowMs();
}

void AutoMessages::SetTMRAddsEnabled(bool enabled) {
    addsEnabled_ = enabled;
    host_.EnableAddsTimer(enabled);
}

void AutoMessages::SetTMRSendEnabled(bool enabled) {
    sendEnabled_ = enabled;
    host_.EnableSendTimer(enabled);
}
