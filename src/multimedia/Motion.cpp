#include "multimedia/Motion.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace tarvo {

float eased(Ease ease, float t) {
    t = std::clamp(t, 0.0f, 1.0f);
    const float pi = std::numbers::pi_v<float>;
    switch (ease) {
    case Ease::Smooth:
        return 0.5f - 0.5f * std::cos(pi * t);
    case Ease::Linear:
        return t;
    case Ease::In:
        return 1.0f - std::cos(0.5f * pi * t);
    case Ease::Out:
        return std::sin(0.5f * pi * t);
    }
    return t;
}

Motion::Motion(std::vector<Key> keys)
    : keys_(std::move(keys)) {
    if (keys_.empty())
        throw std::invalid_argument("a motion needs at least one key pose");
    for (const Key& k : keys_) {
        if (k.hold < 0 || k.move < 0)
            throw std::invalid_argument("a key pose cannot last a negative time");
        period_ += k.hold + k.move;
    }
    if (keys_.size() == 1)
        period_ = keys_.front().hold; // a still pose: moving to itself would change nothing
}

Pose Motion::at(float seconds) const {
    if (keys_.size() == 1 || period_ <= 0)
        return keys_.front().pose;
    float t = std::fmod(seconds, period_);
    if (t < 0)
        t += period_;
    for (size_t i = 0; i < keys_.size(); ++i) {
        const Key& k = keys_[i];
        if (t < k.hold)
            return k.pose;
        t -= k.hold;
        if (t < k.move) {
            const Pose& next = keys_[(i + 1) % keys_.size()].pose;
            return blend(k.pose, next, eased(k.ease, t / k.move));
        }
        t -= k.move;
    }
    return keys_.front().pose; // only rounding can get here: the loop's end is its start
}

} // namespace tarvo
