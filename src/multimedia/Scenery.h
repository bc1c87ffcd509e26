#pragma once

#include "multimedia/Drawing.h"

#include <QSize>

namespace tarvo {

class Camera;

// What stands behind everything else.
enum class Backdrop {
    Wall,       // a plain wall and the floor
    OpenWindow, // the wall with a window onto distant hills, for resting the eyes on far things
};

// The wall, the floor and, when asked for, the window.
void paintBackdrop(QPainter& painter, const Camera& camera, QSize size, Backdrop backdrop);

// The desk with keyboard and mouse, and the chair, as drawings among the figure's parts. The screen
// stands on the desk only when the camera looks from the side: from the front it would hide the
// figure (the camera takes its place).
void addFurniture(std::vector<Drawing>& drawings, const Camera& camera);

} // namespace tarvo
