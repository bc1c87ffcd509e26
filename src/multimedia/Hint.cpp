#include "multimedia/Hint.h"

#include "multimedia/Body.h"
#include "multimedia/Camera.h"
#include "multimedia/Palette.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <numbers>

namespace tarvo {

namespace {

QPointF anchorPoint(const Camera& camera, const Body& body, Anchor anchor) {
    switch (anchor) {
    case Anchor::Head:
        return camera.project(body.headCentre);
    case Anchor::Chin:
        return camera.project(body.headCentre +
                              body.head.rotatedVector({0, -0.75f, 0.7f}) * proportions::headRadius);
    case Anchor::Chest:
        return camera.project((body.torso[4].centre + body.torso[5].centre) / 2);
    case Anchor::LeftShoulder:
        return camera.project(body.arms[LeftSide].shoulder);
    case Anchor::RightShoulder:
        return camera.project(body.arms[RightSide].shoulder);
    case Anchor::LeftHand:
        return camera.project(body.arms[LeftSide].hand.wrist + body.arms[LeftSide].hand.fingers * 5);
    case Anchor::RightHand:
        return camera.project(body.arms[RightSide].hand.wrist + body.arms[RightSide].hand.fingers * 5);
    }
    return {};
}

// From centimetres in the picture's plane (y up) to pixels (y down).
QPointF toPixels(const Camera& camera, QPointF cm) {
    return {cm.x() * camera.scale(), -cm.y() * camera.scale()};
}

QPolygonF arrowHead(QPointF tip, QPointF direction, qreal size) {
    const qreal length = std::hypot(direction.x(), direction.y());
    if (length < 1e-9)
        return {};
    const QPointF d = direction / length;
    const QPointF n(-d.y(), d.x());
    return QPolygonF{tip + d * (size * 0.35), tip - d * size + n * (size * 0.62),
                     tip - d * size - n * (size * 0.62)};
}

} // namespace

void paintArrowHint(QPainter& painter, const Camera& camera, const Body& still, const Hint& hint) {
    if (hint.shape == HintShape::Breath)
        return;
    const QPointF start = anchorPoint(camera, still, hint.anchor) + toPixels(camera, hint.offset);
    const qreal width = std::max(2.0, 0.9 * camera.scale());
    const qreal head = 3.2 * width;
    QPainterPath shaft;
    QPainterPath heads;
    if (hint.shape == HintShape::Line) {
        const QPointF end = start + toPixels(camera, hint.along);
        const QPointF d = end - start;
        const qreal length = std::hypot(d.x(), d.y());
        const QPointF unit = length > 0 ? d / length : QPointF(1, 0);
        shaft.moveTo(hint.bothEnds ? start + unit * head * 0.7 : start);
        shaft.lineTo(end - unit * head * 0.7);
        heads.addPolygon(arrowHead(end, d, head));
        if (hint.bothEnds)
            heads.addPolygon(arrowHead(start, -d, head));
    } else {
        const qreal r = hint.radius * camera.scale();
        const qreal ry = r * hint.squash;
        const qreal degree = std::numbers::pi / 180;
        auto at = [&](qreal deg) {
            return start + QPointF(r * std::cos(deg * degree), -ry * std::sin(deg * degree));
        };
        // The way the arrow travels along the arc at an angle, `sense` 1 counter-clockwise.
        auto tangent = [&](qreal deg, qreal sense) {
            return QPointF(-r * std::sin(deg * degree), -ry * std::cos(deg * degree)) * sense;
        };
        // The shaft stops short of the heads, by about a head's length along the arc.
        const qreal sense = hint.to >= hint.from ? 1 : -1;
        auto trimmed = [&](qreal deg, qreal towards) {
            const QPointF t = tangent(deg, 1);
            const qreal speed = std::max(1e-6, std::hypot(t.x(), t.y()) * degree);
            return deg + towards * head * 0.7 / speed;
        };
        const qreal a0 = hint.bothEnds ? trimmed(hint.from, sense) : hint.from;
        const qreal a1 = trimmed(hint.to, -sense);
        constexpr int steps = 48;
        shaft.moveTo(at(a0));
        for (int i = 1; i <= steps; ++i)
            shaft.lineTo(at(a0 + (a1 - a0) * i / steps));
        heads.addPolygon(arrowHead(at(hint.to), tangent((hint.to + a1) / 2, sense), head));
        if (hint.bothEnds)
            heads.addPolygon(arrowHead(at(hint.from), tangent((hint.from + a0) / 2, -sense), head));
    }
    // A pale halo keeps the arrow readable over the figure and over the backdrop alike.
    const QColor halo(255, 255, 255, 200);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(halo, width + 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(shaft);
    painter.setPen(QPen(halo, 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(halo);
    painter.drawPath(heads);
    painter.setPen(QPen(palette::hint, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(shaft);
    painter.setPen(QPen(palette::hint, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(palette::hint);
    painter.drawPath(heads);
}

void paintBreathHint(QPainter& painter, const Camera& camera, const Body& still, const Hint& hint,
                     float breath) {
    if (hint.shape != HintShape::Breath)
        return;
    const QPointF centre = anchorPoint(camera, still, hint.anchor) + toPixels(camera, hint.offset);
    const qreal r = hint.radius * camera.scale() * (0.75 + 0.45 * breath);
    QColor fill = palette::hint;
    fill.setAlphaF(0.12f + 0.1f * breath);
    QColor ring = palette::hint;
    ring.setAlphaF(0.45f);
    painter.setPen(QPen(ring, std::max(1.5, 0.5 * camera.scale())));
    painter.setBrush(fill);
    painter.drawEllipse(centre, r, r);
}

} // namespace tarvo
