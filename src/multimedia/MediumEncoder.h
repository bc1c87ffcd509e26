#pragma once

#include <QByteArray>

namespace tarvo {

struct Medium;

// Frames per second of the built-in videos: enough for calm movements, and it keeps the files small.
inline constexpr int kFramesPerSecond = 10;
// JPEG quality of a video frame. The flat colours of the drawings stay clean at this level even when
// the player shows them three times larger, and the whole set stays at a few megabytes.
inline constexpr int kJpegQuality = 75;

// How many frames make one seamless round of a video's movement.
int frameCountOf(const Medium& medium);

// The complete file of a medium: an MJPEG AVI for a video (".avi"), a 24-bit BMP of its first pose
// for a picture (".bmp").
QByteArray encodeMedium(const Medium& medium);

} // namespace tarvo
