#pragma once

// A uniform pseudo-random number in [0, 1).
class RandomSource {
public:
    virtual ~RandomSource() = default;
    virtual double Next() = 0;
};
