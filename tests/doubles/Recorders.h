#pragma once

#include "platform/Beeper.h"
#include "platform/Clock.h"
#include "platform/ProcessEnd.h"
#include "platform/RandomSource.h"

#include <QList>

class BeepRecorder : public Beeper {
public:
    void Beep() override { ++beeps; }
    int beeps = 0;
};

class EndRecorder : public ProcessEnd {
public:
    void EndNow() override { ++ended; }
    int ended = 0;
};

// Draws the numbers of its script, then 0.
class ScriptedRandom : public RandomSource {
public:
    double Next() override { return script.isEmpty() ? 0.0 : script.takeFirst(); }
    QList<double> script;
};

// A clock that moves only when told.
class FakeClock : public Clock {
public:
    std::int64_t NowMs() override { return now; }
    std::int64_t now = 1000;
};
