#pragma once

// The system beep.
class Beeper {
public:
    virtual ~Beeper() = default;
    virtual void Beep() = 0;
};
