#include "multimedia/Body.h"

#include <algorithm>
#include <cmath>

namespace tarvo {

namespace p = proportions;

namespace {

float sign(Side side) {
    return side == LeftSide ? 1.0f : -1.0f;
}

// From the arm's own description (x away from the middle) to the figure's frame.
QVector3D toSide(const QVector3D& v, Side side) {
    return {v.x() * sign(side), v.y(), v.z()};
}

QVector3D unitOr(const QVector3D& v, const QVector3D& fallback) {
    return v.lengthSquared() > 1e-8f ? v.normalized() : fallback;
}

Hand handFor(const ArmPose& arm, const QQuaternion& torso, const QVector3D& wrist, Side side) {
    Hand h;
    h.wrist = wrist;
    h.fingers = unitOr(torso.rotatedVector(toSide(arm.fingers, side)), {0, 0, 1});
    // The palm is kept at right angles to the fingers, whatever the blend between two poses made of it.
    QVector3D palm = torso.rotatedVector(toSide(arm.palm, side));
    palm -= QVector3D::dotProduct(palm, h.fingers) * h.fingers;
    h.palm = unitOr(palm, QVector3D::crossProduct(h.fingers, {1, 0, 0}).normalized());
    // A right hand with its palm down and fingers forward has its thumb towards the figure's left.
    const QVector3D across = QVector3D::crossProduct(h.fingers, h.palm);
    h.thumbSide = side == RightSide ? across : -across;
    h.open = std::clamp(arm.open, -1.0f, 1.0f);
    return h;
}

} // namespace

QVector3D elbowBetween(const QVector3D& shoulder, const QVector3D& wrist, const QVector3D& toward,
                       float upper, float lower) {
    const QVector3D span = wrist - shoulder;
    const float reach = upper + lower;
    float d = span.length();
    const QVector3D dir = unitOr(span, {0, -1, 0});
    if (d >= reach * 0.999f)
        return shoulder + dir * upper;
    d = std::max(d, std::abs(upper - lower) + 0.01f);
    const float along = (upper * upper - lower * lower + d * d) / (2 * d);
    const float out = std::sqrt(std::max(0.0f, upper * upper - along * along));
    QVector3D bendDir = toward - QVector3D::dotProduct(toward, dir) * dir;
    bendDir = unitOr(bendDir, unitOr(QVector3D::crossProduct(dir, {0, 0, 1}), {1, 0, 0}));
    return shoulder + dir * along + bendDir * out;
}

Body bodyFor(const Pose& pose) {
    Body b;
    const QQuaternion bend = QQuaternion::fromAxisAndAngle(1, 0, 0, pose.bend);
    const QQuaternion lean = QQuaternion::fromAxisAndAngle(0, 0, 1, -pose.lean);
    const QQuaternion twist = QQuaternion::fromAxisAndAngle(0, 1, 0, pose.twist);
    const QQuaternion torso = twist * lean * bend;
    // The lower back takes half of every bend, so the spine curves instead of hinging at the hips.
    const QQuaternion waist = QQuaternion::slerp(QQuaternion(), torso, 0.5f);
    const float breath = std::clamp(pose.breath, 0.0f, 1.0f);

    for (Side side : {RightSide, LeftSide}) {
        const float s = sign(side);
        const ArmPose& arm = side == LeftSide ? pose.left : pose.right;
        const int i = side;
        b.torso[0 + i] = {{12 * s, 5, 0}, 10};
        b.torso[2 + i] = {waist.rotatedVector({12.5f * s, 22, 0.5f}), 9.5f};
        b.torso[4 + i] = {torso.rotatedVector({9.5f * s, 34 + breath, 2 + 2 * breath}), 9.5f + 0.6f * breath};
        const QVector3D shoulderLocal{14 * s * (1 + 0.03f * breath), 42 + arm.shoulderUp + 1.5f * breath,
                                      arm.shoulderForward};
        b.torso[6 + i] = {torso.rotatedVector(shoulderLocal), 8};

        Arm& a = b.arms[static_cast<size_t>(i)];
        a.shoulder = torso.rotatedVector(shoulderLocal + QVector3D(3 * s, -1, 0));
        const QVector3D wrist = torso.rotatedVector(toSide(arm.wrist, side));
        const QVector3D toward = torso.rotatedVector(toSide(arm.elbowToward, side));
        a.elbow = elbowBetween(a.shoulder, wrist, toward, p::upperArm, p::forearm);
        // A wrist out of reach stays at the end of the straightened arm.
        const QVector3D reached = a.elbow + unitOr(wrist - a.elbow, {0, -1, 0}) * p::forearm;
        a.hand = handFor(arm, torso,
                         (wrist - a.shoulder).length() > p::upperArm + p::forearm ? reached : wrist, side);

        b.legs[static_cast<size_t>(i)] = {
            {10 * s, 4, 2}, {11 * s, 5, 42}, {11.5f * s, -40, 43}, {12.5f * s, -44, 54}};
    }

    const float shrug = 0.35f * (pose.left.shoulderUp + pose.right.shoulderUp) / 2;
    b.neckBase = torso.rotatedVector({0, 47 + shrug + breath, -1});
    b.neckTop = b.neckBase + torso.rotatedVector({0, 8, 0.5f - pose.chinBack});
    const QQuaternion turn = QQuaternion::fromAxisAndAngle(0, 1, 0, pose.headTurn);
    const QQuaternion tilt = QQuaternion::fromAxisAndAngle(0, 0, 1, -pose.headTilt);
    const QQuaternion nod = QQuaternion::fromAxisAndAngle(1, 0, 0, pose.headNod);
    b.head = torso * turn * tilt * nod;
    b.headCentre = b.neckTop + b.head.rotatedVector({0, 8.5f, 1.5f});
    b.gazeX = std::clamp(pose.gazeX, -1.0f, 1.0f);
    b.gazeY = std::clamp(pose.gazeY, -1.0f, 1.0f);
    b.eyesOpen = std::clamp(pose.eyesOpen, 0.0f, 1.0f);
    return b;
}

} // namespace tarvo
