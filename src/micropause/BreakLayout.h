#pragma once

#include <QSize>

namespace tarvo {

// The proportions of the break panel, derived from the screen it appears on so that it reads the same
// from 1024 × 768 to 4K: about half the screen wide, never smaller than the panel's designed size and
// never a wall of text on a very large screen.
struct BreakLayout {
    QSize panel;   // picBlack
    int messagePx; // lblWarning's font size in pixels
    int hintPx;    // lblESC's font size in pixels
    int barHeight; // picPB
    int margin;    // inside picBlack, around the three rows
};

// The panel at its designed size, as the form shows it when the screen is not blanked.
BreakLayout designedBreakLayout();
// The panel for a blanked screen of this size.
BreakLayout breakLayoutFor(const QSize& screen);

} // namespace tarvo
