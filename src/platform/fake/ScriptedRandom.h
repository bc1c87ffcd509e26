#pragma once

#include "core/RandomSource.h"

#include <deque>

namespace tarvo {

// Random numbers a test chooses: Rnd returns them in turn (0 once they run out).
class ScriptedRandom : public RandomSource {
public:
    void Randomize() override { ++seeded_; }
    float Rnd() override {
        if (numbers_.empty())
            return 0;
        const float n = numbers_.front();
        numbers_.pop_front();
        return n;
    }
    void next(float number) { numbers_.push_back(number); }
    int seeded() const { return seeded_; }

private:
    std::deque<float> numbers_;
    int seeded_ = 0;
};

} // namespace tarvo
