#pragma once

#include "automation/RecoveryGuard.h"
#include "platform/ProcessLauncher.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <string>

class AutoMessageHost;
class Beeper;
class Clock;
class KeySender;
class MessageBoxes;
class RandomSource;
class WindowServices;
struct AppState;

// The automatic chat messages and the recovery of a lost server: the countdown
// (TMRAdds), the dispatcher (Timer1) and the typist (TMRSend), driven by tick calls.
//
// The class owns the enabled state of TMRAdds and TMRSend and mirrors every change to
// the host's timers; a tick that arrives while its timer is off does nothing. The launch
// reports to it through ForgetServer and ServerLaunched; the host relaunches on request.
class AutoMessages {
public:
    // How long a line may wait for the console to get the input focus before it is
    // dropped.
    static constexpr int kFocusPatienceMs = 10000;
    // How long after a launch a missing console means "not up yet" rather than "gone".
    static constexpr int kLaunchGraceMs = 30000;

    AutoMessages(AutoMessageHost& host, const AppState& state, WindowServices& windows,
                 KeySender& keys, RandomSource& random, Beeper& beeper, MessageBoxes& messages,
                 Clock& clock);

    // Appends a non-empty text to the queue; an empty one is ignored.
    void QueueMessage(const QString& text);

    // "Auto Message" changed state (by the operator or by code).
    void CHKMessage_Click(bool checked);

    // Countdown tick, every second while TMRAdds runs.
    void TMRAdds_Timer();
    // Dispatcher tick, every second for the whole run.
    void Timer1_Timer();
    // Typist tick, every text-rate milliseconds while TMRSend runs.
    void TMRSend_Timer();

    // Resets the message machinery after typing failed, then relaunches the server
    // ("Server Recover" checked) or tells the operator.
    void RecoverServer();

    // A launch begins: no server is known until it reports one, and a line half typed
    // for the old server is dropped. A launch that is not recovery's own starts the count
    // of automatic relaunches afresh.
    void ForgetServer();
    // The launch started a server (non-zero handle) as `process` (0 when not known):
    // its countdown starts, and its console has a grace period to appear.
    void ServerLaunched(std::uint32_t handle, std::int64_t process = 0);

    // A server that ends with a failure status this soon after its launch failed to start.
    static constexpr std::int64_t kFailedStartMs = 5000;

    // The launch started `process` as the server; its end is watched from now on.
    void WatchServer(std::int64_t process);
    // A started program has ended. When it is the launched server, the recovery step runs
    // at once, whatever the state of the messages.
    void ServerExited(const ProgramExit& exit);
    // The server process being watched; 0 when none.
    std::int64_t WatchedServer() const { return watched_; }

    bool TMRAddsEnabled() const { return addsEnabled_; }
    bool TMRSendEnabled() const { return sendEnabled_; }
    // Messages waiting to be typed, first in first out.
    const QStringList& Queue() const { return LSTBuff_; }
    // The chat command being typed; empty while the typist is idle.
    const QString& PendingLine() const { return PendingLine_; }
    // Position (from 1) of the character of PendingLine typed last, counting characters
    // (not UTF-16 units); 0 while idle.
    int SendPos() const { return SendPos_; }
    // Seconds counted since the last batch was queued.
    int AddsSeconds() const { return AddsSeconds_; }
    // Result of the last launch; non-zero means a server was launched.
    std::uint32_t ServerHandle() const { return ServerHandle_; }

private:
    void SetTMRAddsEnabled(bool enabled);
    void SetTMRSendEnabled(bool enabled);
    void QueueDueMessages();
    // Activates the console and types character number SendPos of PendingLine; when
    // the console cannot take it yet, the character waits for the next tick.
    void TypeCurrentCharacter();
    // The character stays for the next tick; after too long without progress the line
    // is dropped and the operator told.
    void WaitForFocus();
    void DropPendingLine();
    // Typing cannot work in this session at all: the messages stop, the server runs on.
    void StopWithoutDisplay();
    // Shows a notice the first time only; `told` remembers it for the run.
    void TellOnce(bool& told, const QString& text);
    // The recovery step; `exit` tells how the server ended when it did.
    void Recover(const ProgramExit* exit);

    AutoMessageHost& host_;
    const AppState& state_;
    WindowServices& windows_;
    KeySender& keys_;
    RandomSource& random_;
    Beeper& beeper_;
    MessageBoxes& messages_;
    Clock& clock_;

    QString PendingLine_;
    std::u32string pendingChars_; // PendingLine_ by character
    std::int16_t SendPos_ = 0;
    std::int16_t AddsSeconds_ = 0;
    QStringList LSTBuff_;
    std::uint32_t ServerHandle_ = 0;
    bool addsEnabled_ = false;
    bool sendEnabled_ = false;
    std::int64_t serverProcess_ = 0;
    // While the clock is before this, a missing console is one not up yet.
    std::int64_t graceUntil_ = 0;
    // When the current character began to wait for the console's focus; -1 when not.
    std::int64_t waitingSince_ = -1;
    bool toldNoDisplay_ = false;
    std::int64_t watched_ = 0;
    std::int64_t launchedAtMs_ = 0;
    bool relaunching_ = false;
    RecoveryGuard guard_;
};
