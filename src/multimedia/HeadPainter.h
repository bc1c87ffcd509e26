#pragma once

#include <QPainter>

namespace tarvo {

class Camera;
struct Body;

// The head: a ball with hair, ears, eyes that look about and close, brows and a smile. Everything on
// it is placed on the ball's surface and turns with it, so a turned, tilted or nodding head reads as
// such from any side.
void paintHead(QPainter& painter, const Camera& camera, const Body& body);

} // namespace tarvo
