#pragma once

// Ends the program at once: no further handler runs, nothing else is stored.
class ProcessEnd {
public:
    virtual ~ProcessEnd() = default;
    virtual void EndNow() = 0;
};
