#pragma once

#include "multimedia/Pose.h"

#include <vector>

namespace tarvo {

// How a move between two key poses speeds up and slows down.
enum class Ease {
    Smooth, // starts and stops gently: a move from one held position to the next
    Linear, // even speed: one step of a continuous circle
    In,     // starts gently, arrives at full speed: the first half of a move through a passing pose
    Out,    // leaves at full speed, stops gently: the second half of such a move
};

// A pose that the movement reaches, how long it stays there, and how it then moves on to the next.
struct Key {
    Pose pose;
    float hold = 0; // seconds
    float move = 1; // seconds to the next key (after the last key: back to the first)
    Ease ease = Ease::Smooth;
};

// A looping movement through key poses. The last key moves on to the first, so a clip of exactly one
// period plays on seamlessly when the player repeats it.
class Motion {
public:
    explicit Motion(std::vector<Key> keys);

    // Seconds of one round through every key.
    float period() const { return period_; }
    // The pose at a moment; any time is taken modulo the period.
    Pose at(float seconds) const;
    const std::vector<Key>& keys() const { return keys_; }

private:
    std::vector<Key> keys_;
    float period_ = 0;
};

// The share of a move done after `t` of its time (both 0 … 1).
float eased(Ease ease, float t);

} // namespace tarvo
