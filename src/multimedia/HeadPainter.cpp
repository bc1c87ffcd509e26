#include "multimedia/HeadPainter.h"

#include "multimedia/Body.h"
#include "multimedia/Camera.h"
#include "multimedia/Palette.h"

#include <QPainterPath>
#include <QTransform>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tarvo {

namespace {

namespace p = proportions;

// Short hair: the crown above a line from the brow to just over the ears (lower on the head's left,
// swept to one side), and the back of the head behind the ears down to the nape. Each is the part of
// the ball beyond a plane.
struct HairPart {
    QVector3D axis;
    float level; // in radii from the centre
};
const std::array<HairPart, 2> kHair{
    {{QVector3D(0.2f, 1, -0.25f).normalized(), 0.3f}, {QVector3D(0, 0.15f, -1).normalized(), 0.2f}}};
// Hair stands a little off the scalp; this is how much larger its outline is than the head's.
constexpr qreal kHairVolume = 1.07;

struct HeadView {
    const Camera& camera;
    const Body& body;
    QPointF centre;
    qreal radius; // pixels

    // The direction of a point on the head (in the head's own frame) as seen from the camera: x right
    // and y down on the picture, z towards the camera.
    QVector3D screenDirection(const QVector3D& local) const {
        const QVector3D world = body.head.rotatedVector(local);
        const QPointF d = camera.projectDirection(world) / camera.scale();
        return {static_cast<float>(d.x()), static_cast<float>(d.y()), camera.depth(world)};
    }

    // Maps a small patch of the head's surface around `local` (units of the head's radius, x across
    // the face to the head's left, y up) onto the picture, so that a feature drawn flat on it turns
    // and foreshortens with the head.
    QTransform surfaceAt(const QVector3D& local) const {
        const QVector3D n = local.normalized();
        const QVector3D across = QVector3D::crossProduct({0, 1, 0}, n).normalized();
        const QVector3D up = QVector3D::crossProduct(n, across);
        const QVector3D world = body.head.rotatedVector(n);
        const QPointF o = camera.project(body.headCentre + world * p::headRadius);
        const QPointF a = camera.projectDirection(body.head.rotatedVector(across)) * p::headRadius;
        const QPointF b = camera.projectDirection(body.head.rotatedVector(up)) * p::headRadius;
        return QTransform(a.x(), a.y(), b.x(), b.y(), o.x(), o.y());
    }

    // How squarely a point of the surface faces the camera: 1 straight on, 0 on the outline.
    float facing(const QVector3D& local) const { return screenDirection(local.normalized()).z(); }

    qreal pen(qreal headRadii) const { return std::max(1.0, headRadii * radius); }
};

QVector3D eyeAt(float side) {
    return QVector3D(0.36f * side, 0.06f, 0.93f).normalized();
}

// The part of the visible half of the ball where the surface lies beyond the plane at `level` (in
// radii) across `axis` (a unit direction on the picture, z towards the camera). The rim of that cap
// shows as an ellipse; the cap is that ellipse plus the slice of the disc beyond the rim's chord when
// it faces the camera, and the slice without the ellipse when it faces away.
QPainterPath capOfBall(QPointF centre, qreal radius, QVector3D axis, qreal level) {
    QPainterPath disc;
    disc.addEllipse(centre, radius, radius);
    const qreal d = level * radius;
    const QPointF inPlane(axis.x(), axis.y());
    const qreal planeLength = std::hypot(inPlane.x(), inPlane.y());

    QPainterPath beyondChord;
    if (planeLength < 1e-6) {
        if (d <= 0)
            beyondChord = disc;
    } else {
        const QPointF m = inPlane / planeLength;
        const QPointF along(-m.y(), m.x());
        const QPointF foot = centre + m * (d / planeLength);
        const qreal far = 4 * radius;
        beyondChord.addPolygon(QPolygonF{foot + along * far, foot - along * far, foot - along * far + m * far,
                                         foot + along * far + m * far});
        beyondChord.closeSubpath();
    }

    QPainterPath rim;
    const QVector3D n = axis.normalized();
    QVector3D u = QVector3D::crossProduct(n, {0, 0, 1});
    if (u.lengthSquared() < 1e-6f)
        u = {1, 0, 0};
    u.normalize();
    const QVector3D w = QVector3D::crossProduct(n, u);
    const qreal rho = radius * std::sqrt(std::max(0.0, 1 - level * level));
    QPolygonF ellipse;
    for (int i = 0; i < 48; ++i) {
        const qreal t = 2 * std::numbers::pi * i / 48;
        const QVector3D q = n * static_cast<float>(d) +
                            (u * static_cast<float>(std::cos(t)) + w * static_cast<float>(std::sin(t))) *
                                static_cast<float>(rho);
        ellipse << centre + QPointF(q.x(), q.y());
    }
    rim.addPolygon(ellipse);
    rim.closeSubpath();

    if (axis.z() > 1e-4f)
        return disc.intersected(beyondChord.united(rim));
    if (axis.z() < -1e-4f)
        return disc.intersected(beyondChord.subtracted(rim));
    return disc.intersected(beyondChord);
}

void paintEar(QPainter& painter, const HeadView& head, float side) {
    const QVector3D at(side, 0.02f, -0.1f);
    painter.setTransform(head.surfaceAt(at));
    painter.setPen(QPen(palette::outlineOf(palette::skin), head.pen(0.06) / head.radius));
    painter.setBrush(palette::skin);
    painter.drawEllipse(QPointF(0, 0), 0.2, 0.27);
    painter.resetTransform();
}

void paintEye(QPainter& painter, const HeadView& head, float side) {
    const QVector3D at = eyeAt(side);
    const float facing = head.facing(at);
    if (facing < 0.05f)
        return;
    painter.setTransform(head.surfaceAt(at));
    const qreal line = head.pen(0.045) / head.radius;
    const qreal open = head.body.eyesOpen;
    if (open < 0.2) {
        // Closed: the lid's lower edge, a gentle curve.
        QPainterPath lid(QPointF(-0.13, 0.01));
        lid.quadTo(QPointF(0, -0.08), QPointF(0.13, 0.01));
        painter.setPen(QPen(palette::eye, line * 1.2, Qt::SolidLine, Qt::RoundCap));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(lid);
    } else if (facing < 0.45f) {
        // Seen from the side the white would be a sliver; a dark eye reads better.
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette::eye);
        painter.drawEllipse(QPointF(0, 0), 0.09, 0.09 * open);
    } else {
        const QRectF white(-0.14, -0.11 * open, 0.28, 0.22 * open);
        QPainterPath whitePath;
        whitePath.addEllipse(white);
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette::eyeWhite);
        painter.drawPath(whitePath);
        painter.save();
        painter.setClipPath(whitePath, Qt::IntersectClip);
        painter.setBrush(palette::eye);
        // The pupil turns with the eye: x across the face towards the head's left, y up.
        painter.drawEllipse(QPointF(head.body.gazeX * 0.07, head.body.gazeY * 0.055), 0.075, 0.075);
        painter.restore();
        painter.setPen(QPen(palette::outlineOf(palette::skin), line));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(white);
    }
    painter.resetTransform();
}

void paintBrow(QPainter& painter, const HeadView& head, float side) {
    const QVector3D at = QVector3D(0.36f * side, 0.33f, 0.87f).normalized();
    if (head.facing(at) < 0.05f)
        return;
    painter.setTransform(head.surfaceAt(at));
    QPainterPath brow(QPointF(-0.13, 0));
    brow.quadTo(QPointF(0, 0.06), QPointF(0.13, 0));
    painter.setPen(QPen(palette::hair, head.pen(0.05) / head.radius, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(brow);
    painter.resetTransform();
}

void paintFace(QPainter& painter, const HeadView& head) {
    const float cheekFacing = head.facing({0, -0.2f, 1});
    for (float side : {-1.0f, 1.0f}) {
        const QVector3D cheek = QVector3D(0.55f * side, -0.25f, 0.8f).normalized();
        if (head.facing(cheek) > 0.1f && cheekFacing > 0) {
            painter.setTransform(head.surfaceAt(cheek));
            painter.setPen(Qt::NoPen);
            QColor blush = palette::cheek;
            blush.setAlphaF(0.35f);
            painter.setBrush(blush);
            painter.drawEllipse(QPointF(0, 0), 0.12, 0.08);
        }
        paintEye(painter, head, side);
        paintBrow(painter, head, side);
    }
    // The smile stays in view a little past the outline, so a head in profile still shows its mouth.
    const QVector3D mouth = QVector3D(0, -0.45f, 0.89f).normalized();
    if (head.facing(mouth) > -0.25f) {
        painter.setTransform(head.surfaceAt(mouth));
        QPainterPath smile(QPointF(-0.17, 0.04));
        smile.quadTo(QPointF(0, -0.1), QPointF(0.17, 0.04));
        painter.setPen(QPen(palette::mouth, head.pen(0.05) / head.radius, Qt::SolidLine, Qt::RoundCap));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(smile);
    }
    const QVector3D nose(0, -0.12f, 1);
    if (head.facing(nose) > 0.55f) {
        painter.setTransform(head.surfaceAt(nose));
        QPainterPath tip(QPointF(-0.05, -0.02));
        tip.quadTo(QPointF(0, -0.07), QPointF(0.05, -0.02));
        painter.setPen(QPen(palette::outlineOf(palette::skin), head.pen(0.04) / head.radius, Qt::SolidLine,
                            Qt::RoundCap));
        painter.drawPath(tip);
    }
    painter.resetTransform();
}

} // namespace

void paintHead(QPainter& painter, const Camera& camera, const Body& body) {
    const HeadView head{camera, body, camera.project(body.headCentre), p::headRadius * camera.scale()};
    const qreal outline = std::max(1.0, 0.06 * head.radius);

    // What lies behind the ball's outline first: ears turned away and the tip of the nose, which
    // shows as a small bump only where it stands out of the outline.
    for (float side : {-1.0f, 1.0f})
        if (head.facing({side, 0, -0.1f}) < 0.3f)
            paintEar(painter, head, side);
    const QVector3D noseDir = body.head.rotatedVector({0, -0.22f, 1}).normalized();
    const QPointF nose = camera.project(body.headCentre + noseDir * (p::headRadius * 0.98f));
    painter.setPen(QPen(palette::outlineOf(palette::skin), outline));
    painter.setBrush(palette::skin);
    painter.drawEllipse(nose, 0.16 * head.radius, 0.16 * head.radius);
    // The hair's volume: the same parts on a slightly larger ball, showing round the crown and the back.
    QPainterPath volume;
    for (const HairPart& part : kHair)
        volume = volume.united(
            capOfBall(head.centre, head.radius * kHairVolume, head.screenDirection(part.axis), part.level));
    painter.setPen(QPen(palette::outlineOf(palette::hair), outline));
    painter.setBrush(palette::hair);
    painter.drawPath(volume);

    QPainterPath ball;
    ball.addEllipse(head.centre, head.radius, head.radius);
    QPainterPath hair;
    for (const HairPart& part : kHair)
        hair = hair.united(capOfBall(head.centre, head.radius, head.screenDirection(part.axis), part.level));
    // Skin and hair meet edge to edge; painting one over the other would leave a seam of the lower one.
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette::skin);
    painter.drawPath(ball.subtracted(hair));
    painter.setBrush(palette::hair);
    painter.drawPath(hair);

    painter.save();
    painter.setClipPath(ball);
    for (float side : {-1.0f, 1.0f})
        if (head.facing({side, 0, -0.1f}) >= 0.3f)
            paintEar(painter, head, side);
    paintFace(painter, head);
    // The hairline, but not the hair's edge along the outline, which the volume already draws.
    QPainterPath inside;
    inside.addEllipse(head.centre, head.radius - outline, head.radius - outline);
    painter.setClipPath(inside);
    painter.setPen(QPen(palette::outlineOf(palette::hair), outline * 0.8));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(hair);
    painter.restore();

    // The face's outline, where there is no hair.
    QPainterPath everywhere;
    everywhere.addRect(QRectF(head.centre, QSizeF())
                           .adjusted(-2 * head.radius, -2 * head.radius, 2 * head.radius, 2 * head.radius));
    painter.save();
    painter.setClipPath(everywhere.subtracted(hair.united(volume)));
    painter.setPen(QPen(palette::outlineOf(palette::skin), outline));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(ball);
    painter.restore();
}

} // namespace tarvo
