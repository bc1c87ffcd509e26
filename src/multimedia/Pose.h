#pragma once

#include <QVector3D>

namespace tarvo {

// Everything below is in centimetres in the figure's own frame: the origin lies in the middle of the
// seat, y points up, z the way the figure faces, and x towards the figure's left hand.

// One arm, told by where its hand is rather than by joint angles: a pose then reads like the
// instruction it shows ("hands together in front of the chest"), and the elbow follows by itself.
// The x axis here points away from the body's middle, so one description serves either arm; the
// positions move with the upper body when it leans or turns.
struct ArmPose {
    QVector3D wrist{12, 27, 40};               // resting on the keyboard
    QVector3D elbowToward{0.7f, -0.8f, -0.3f}; // the side the elbow bends out to
    QVector3D fingers{-0.15f, -0.12f, 1};      // where the fingers point
    QVector3D palm{0, -1, 0};                  // where the palm faces
    float open = 0;                            // -1 a fist, 0 relaxed, 1 spread wide
    float shoulderUp = 0;                      // how far the shoulder is lifted
    float shoulderForward = 0;                 // negative: drawn back
};

// The whole figure at one moment. The default is someone sitting upright at the keyboard.
struct Pose {
    float bend = 0;     // degrees the upper body leans forward from the hips (negative: back)
    float lean = 0;     // degrees it leans sideways, positive towards the figure's left
    float twist = 0;    // degrees it turns, positive towards the figure's left
    float breath = 0;   // 0 breathed out, 1 chest full
    float headTurn = 0; // degrees, positive: the face turns to the figure's left
    float headTilt = 0; // degrees, positive: the left ear drops towards the left shoulder
    float headNod = 0;  // degrees, positive: the chin drops
    float chinBack = 0; // how far the head slides straight back
    float gazeX = 0;    // -1 … 1, positive: the eyes look to the figure's left
    float gazeY = 0;    // -1 … 1, positive: the eyes look up
    float eyesOpen = 1; // 0 closed, 1 open
    ArmPose left;
    ArmPose right;
};

// The pose `t` of the way from `a` to `b` (0 gives a, 1 gives b). Directions are blended as vectors;
// the figure normalises them when it uses them.
Pose blend(const Pose& a, const Pose& b, float t);

// One pose for both arms, for the many movements that both sides do alike.
inline Pose withArms(Pose pose, const ArmPose& arms) {
    pose.left = arms;
    pose.right = arms;
    return pose;
}

} // namespace tarvo
