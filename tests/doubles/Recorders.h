#pragma once

#include "platform/Beeper.h"
#include "platform/Clock.h"
#include "platform/ProcessEnd.h"
#include "platform/RandomSource.h"

#include <QList>

#include <random>

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

// Seeded generator, so a test can replay the same choices; or a fixed script.
class SeededRandom : public RandomSource {
public:
    explicit SeededRandom(unsigned seed = 1) : engine_(seed) {}
    double Next() override {
        if (!script.isEmpty())
            return script.takeFirst();
        return std::uniform_real_distribution<double>(0.0, 1.0)(engine_);
    }
    QList<double> script;

private:
    std::mt19937 engine_;
};

// A clock that moves only when told.
class FakeClock : public Clock {
public:
    std::int64_t NowMs() override { return now; }
    std::int64_t now = 1000;
};
