#pragma once

#include "core/PresenceMonitor.h"

#include <array>
#include <cstddef>

namespace tarvo {

// Conditions that a test sets; each change is told to the listener as the desktop's would be.
class FakePresenceMonitor : public PresenceMonitor {
public:
    void setListener(Listener* listener) override { listener_ = listener; }
    bool holds(PresenceCondition condition) const override { return holds_[index(condition)]; }

    void set(PresenceCondition condition, bool on) {
        holds_[index(condition)] = on;
        if (listener_)
            listener_->presenceChanged();
    }

private:
    static std::size_t index(PresenceCondition c) { return static_cast<std::size_t>(c); }

    Listener* listener_ = nullptr;
    std::array<bool, 4> holds_{};
};

} // namespace tarvo
