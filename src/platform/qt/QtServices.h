#pragma once

#include "platform/Beeper.h"
#include "platform/ProcessEnd.h"
#include "platform/RandomSource.h"

class QtBeeper : public Beeper {
public:
    void Beep() override;
};

// Ends the process without unwinding: every store write is already on disk.
class ImmediateEnd : public ProcessEnd {
public:
    void EndNow() override;
};

class QtRandom : public RandomSource {
public:
    double Next() override;
};
