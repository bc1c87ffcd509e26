#include "multimedia/Pose.h"

namespace tarvo {

namespace {

float mix(float a, float b, float t) {
    return a + (b - a) * t;
}

QVector3D mix(const QVector3D& a, const QVector3D& b, float t) {
    return a + (b - a) * t;
}

ArmPose blend(const ArmPose& a, const ArmPose& b, float t) {
    ArmPose r;
    r.wrist = mix(a.wrist, b.wrist, t);
    r.elbowToward = mix(a.elbowToward, b.elbowToward, t);
    r.fingers = mix(a.fingers, b.fingers, t);
    r.palm = mix(a.palm, b.palm, t);
    r.open = mix(a.open, b.open, t);
    r.shoulderUp = mix(a.shoulderUp, b.shoulderUp, t);
    r.shoulderForward = mix(a.shoulderForward, b.shoulderForward, t);
    return r;
}

} // namespace

Pose blend(const Pose& a, const Pose& b, float t) {
    Pose r;
    r.bend = mix(a.bend, b.bend, t);
    r.lean = mix(a.lean, b.lean, t);
    r.twist = mix(a.twist, b.twist, t);
    r.breath = mix(a.breath, b.breath, t);
    r.headTurn = mix(a.headTurn, b.headTurn, t);
    r.headTilt = mix(a.headTilt, b.headTilt, t);
    r.headNod = mix(a.headNod, b.headNod, t);
    r.chinBack = mix(a.chinBack, b.chinBack, t);
    r.gazeX = mix(a.gazeX, b.gazeX, t);
    r.gazeY = mix(a.gazeY, b.gazeY, t);
    r.eyesOpen = mix(a.eyesOpen, b.eyesOpen, t);
    r.left = blend(a.left, b.left, t);
    r.right = blend(a.right, b.right, t);
    return r;
}

} // namespace tarvo
