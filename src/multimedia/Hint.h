#pragma once

#include <QPointF>

class QPainter;

namespace tarvo {

class Camera;
struct Body;

// The part of the figure that a hint is drawn beside; it stays where that part is in the movement's
// first pose, so the arrows hold still while the figure moves.
enum class Anchor { Head, Chin, Chest, LeftShoulder, RightShoulder, LeftHand, RightHand };

enum class HintShape {
    Arc,    // a curved arrow round the anchor
    Line,   // a straight arrow
    Breath, // a soft bubble behind the chest that swells as the figure breathes in
};

// A wordless pointer to the movement. Sizes and offsets are centimetres in the picture's plane,
// x to the right and y up as the viewer sees it.
struct Hint {
    HintShape shape = HintShape::Arc;
    Anchor anchor = Anchor::Head;
    QPointF offset;          // from the anchor to the arc's centre or the line's start
    float radius = 10;       // Arc, Breath
    float from = 0, to = 90; // Arc: degrees counter-clockwise from the right; the arrow points at `to`
    QPointF along;           // Line: from its start to the point of the arrow
    bool bothEnds = false;   // an arrowhead at each end: a movement to and fro
    float squash = 1;        // Arc: height over width; a flat ellipse reads as a turn about the upright
};

inline Hint arcHint(Anchor anchor, QPointF offset, float radius, float from, float to,
                    bool bothEnds = false) {
    return {HintShape::Arc, anchor, offset, radius, from, to, {}, bothEnds, 1};
}
// The front half of a flat ellipse with a head at each end: turning to either side.
inline Hint turnHint(Anchor anchor, QPointF offset, float radius) {
    return {HintShape::Arc, anchor, offset, radius, 200, 340, {}, true, 0.3f};
}
inline Hint lineHint(Anchor anchor, QPointF offset, QPointF along, bool bothEnds = false) {
    return {HintShape::Line, anchor, offset, 0, 0, 0, along, bothEnds, 1};
}
inline Hint breathHint(float radius) {
    return {HintShape::Breath, Anchor::Chest, {}, radius, 0, 0, {}, false, 1};
}

// Arrows go on top of the picture; `still` is the body in the first pose, which places them.
void paintArrowHint(QPainter& painter, const Camera& camera, const Body& still, const Hint& hint);
// The breathing bubble goes behind the figure and follows the breath of the pose shown.
void paintBreathHint(QPainter& painter, const Camera& camera, const Body& still, const Hint& hint,
                     float breath);

} // namespace tarvo
