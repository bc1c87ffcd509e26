#pragma once

#include "multimedia/Drawing.h"

namespace tarvo {

class Camera;
struct Body;

// The figure's parts as drawings to be sorted among the furniture: legs, torso, neck, head, arms
// and hands, each at its own depth.
void addFigure(std::vector<Drawing>& drawings, const Camera& camera, const Body& body);

} // namespace tarvo
