#pragma once

namespace tarvo {

// The classic runtime's random numbers: Randomize seeds the generator from the clock, Rnd draws the
// next number, at least 0 and below 1.
class RandomSource {
public:
    virtual ~RandomSource() = default;
    virtual void Randomize() = 0;
    virtual float Rnd() = 0;
};

} // namespace tarvo
