#pragma once

#include <cstdint>

namespace tarvo {

// The break screen's countdown bar as the micropause drives it: a position that the bar keeps within
// its range, and an upper end that the bar refuses when it is not above the lower end, with the bar's
// own run-time error (an InterruptFor of 0 asks for a maximum of 0).
class CountdownBar {
public:
    virtual ~CountdownBar() = default;
    virtual std::int32_t Value() const = 0;
    virtual void setValue(std::int32_t value) = 0;
    virtual std::int32_t Max() const = 0;
    virtual void setMax(std::int32_t value) = 0;
};

} // namespace tarvo
