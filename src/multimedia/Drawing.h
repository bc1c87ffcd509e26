#pragma once

#include <QPainter>
#include <QPointF>
#include <QPolygonF>
#include <QVector3D>

#include <functional>
#include <optional>
#include <vector>

namespace tarvo {

// The space a part of the scene takes up, in the figure's frame.
struct Extent {
    QVector3D low, high;
};

// One part of the scene, painted in order of depth: whatever is nearer to the camera is painted later
// and so covers what lies behind it.
struct Drawing {
    float depth = 0;
    std::function<void(QPainter&)> paint;
    std::optional<Extent> extent{}; // given for parts that can lie under a flat box such as the desk top
};

// Paints the drawings from the farthest to the nearest; parts at the same depth keep their order. A
// part that lies wholly under another (below its lowest point, within its width and depth) is painted
// first, however near it is: a single depth cannot order a large flat box against what is under it.
void paintInDepthOrder(QPainter& painter, std::vector<Drawing> drawings);

// A round-ended tube along `points` (at least one), `width` pixels thick, with an outline of its own
// darker shade. Several tubes given together share one outline, so a bent arm shows no seam at the
// elbow.
struct Tube {
    QPolygonF points;
    qreal width = 1;
};
void paintTubes(QPainter& painter, const std::vector<Tube>& tubes, const QColor& fill, qreal outline);

// The smallest convex polygon around a set of points (counter-clockwise on screen).
QPolygonF convexHull(std::vector<QPointF> points);

// Points on a circle, enough for a smooth outline at the picture's size.
void addCircle(std::vector<QPointF>& points, const QPointF& centre, qreal radius);

} // namespace tarvo
