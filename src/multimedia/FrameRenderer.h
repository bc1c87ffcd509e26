#pragma once

#include "multimedia/Hint.h"

#include <QImage>
#include <QRectF>
#include <QSize>

namespace tarvo {

struct Medium;

// The size the built-in media are made in; the player shows them from 0.75 to 3 times that.
inline constexpr QSize kMediaSize{320, 240};

// One frame of a medium at a moment of its movement, drawn at any size (the layout scales with the
// height).
QImage renderFrame(const Medium& medium, float seconds, QSize size = kMediaSize);

// Where a part of the figure lies in a frame, in pixels, including what is drawn round it (the whole
// head, a hand with its fingers). For checks that nothing important leaves the picture.
QRectF anchorBounds(const Medium& medium, float seconds, Anchor anchor, QSize size = kMediaSize);

} // namespace tarvo
