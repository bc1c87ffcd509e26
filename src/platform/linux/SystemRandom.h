#pragma once

#include "core/RandomSource.h"

#include <random>

namespace tarvo {

// Random numbers from a Mersenne twister, seeded from the clock by Randomize.
class SystemRandom : public RandomSource {
public:
    void Randomize() override;
    float Rnd() override;

private:
    std::mt19937 engine_;
};

} // namespace tarvo
