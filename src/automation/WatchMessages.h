#pragma once

#include "platform/MessageBoxes.h"
#include "platform/ProcessLauncher.h"

// What the server watch tells the operator.

// The server ended within moments of its start with a failure status.
MessageRequest FailedStartMessage(const ProgramExit& exit);

// Recovery gave up after `relaunches` relaunches; `last` is how the server last ended,
// or null when it was lost without ending (its console stopped taking keys).
MessageRequest RecoveryStoppedMessage(int relaunches, const ProgramExit* last, bool failedStart);

// The server runs but shows no console window `seconds` after its start; `errorTail` is
// what it has written to its error output so far.
MessageRequest ConsoleMissingMessage(const QString& program, int seconds, const QString& errorTail);
