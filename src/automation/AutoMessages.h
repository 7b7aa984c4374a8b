#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

class AutoMessageHost;
class Beeper;
class KeySender;
class MessageBoxes;
class RandomSource;
class WindowServices;
struct AppState;

// The automatic chat messages and the recovery of a lost server: the countdown
// (TMRAdds), the dispatcher (Timer1) and the typist (TMRSend), driven by tick calls.
//
// The class owns the enabled state of TMRAdds and TMRSend and mirrors every change to
// the host's timers; a tick that arrives while its timer is off does nothing. Code that
// starts the countdown from outside (the launch) goes through SetTMRAddsEnabled.
class AutoMessages {
public:
    // How long a line may wait for the console to get the input focus before it is
    // dropped.
    static constexpr int kFocusPatienceMs = 10000;

    AutoMessages(AutoMessageHost& host, const AppState& state, WindowServices& windows,
                 KeySender& keys, RandomSource& random, Beeper& beeper, MessageBoxes& messages);

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

    void SetTMRAddsEnabled(bool enabled);
    void SetTMRSendEnabled(bool enabled);
    bool TMRAddsEnabled() const { return addsEnabled_; }
    bool TMRSendEnabled() const { return sendEnabled_; }

    // The chat command being typed; empty while the typist is idle.
    QString PendingLine;
    // Position (from 1) of the character of PendingLine typed last; 0 while idle.
    std::int16_t SendPos = 0;
    // Seconds counted since the last batch was queued.
    std::int16_t AddsSeconds = 0;
    // Messages waiting to be typed, first in first out.
    QStringList LSTBuff;
    // Result of the last launch; non-zero means a server was launched. The launch
    // writes it, the recovery clears it.
    std::uint32_t ServerHandle = 0;

private:
    void QueueDueMessages();
    // Activates the console and types character number SendPos of PendingLine.
    void TypeCurrentCharacter();
    void DropPendingLine();

    AutoMessageHost& host_;
    const AppState& state_;
    WindowServices& windows_;
    KeySender& keys_;
    RandomSource& random_;
    Beeper& beeper_;
    MessageBoxes& messages_;

    bool addsEnabled_ = false;
    bool sendEnabled_ = false;
    // Time the current line has waited for the console's focus, in milliseconds.
    int focusWaitMs_ = 0;
};
