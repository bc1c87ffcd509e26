#include "micropause/BreakLayout.h"

#include <algorithm>
#include <cmath>

namespace tarvo {

namespace {

constexpr int kDesignedWidth = 620;
constexpr int kLargestWidth = 1700;

BreakLayout layoutForWidth(int width) {
    BreakLayout l;
    l.panel = QSize(width, static_cast<int>(std::lround(width * 0.38)));
    l.messagePx = std::max(20, static_cast<int>(std::lround(width / 25.0)));
    l.hintPx = std::max(12, static_cast<int>(std::lround(l.messagePx * 0.45)));
    l.barHeight = std::max(10, static_cast<int>(std::lround(width / 48.0)));
    l.margin = std::max(24, static_cast<int>(std::lround(width / 16.0)));
    return l;
}

} // namespace

BreakLayout designedBreakLayout() {
    return layoutForWidth(kDesignedWidth);
}

BreakLayout breakLayoutFor(const QSize& screen) {
    const int wanted = static_cast<int>(std::lround(screen.width() * 0.5));
    // A very wide, low screen (several monitors side by side) must still fit the panel's height.
    const int byHeight = static_cast<int>(std::lround(screen.height() * 0.6 / 0.38));
    return layoutForWidth(std::clamp(std::min(wanted, byHeight), kDesignedWidth, kLargestWidth));
}

} // namespace tarvo
