#pragma once

#include "multimedia/Pose.h"

#include <QQuaternion>
#include <QVector3D>

#include <array>

namespace tarvo {

// A sphere of the figure's volume; the torso is the hull of several.
struct Ball {
    QVector3D centre;
    float radius = 0;
};

// The hand's place and orientation; all directions are unit vectors and at right angles where that
// matters (the palm to the fingers, the thumb side to both).
struct Hand {
    QVector3D wrist;
    QVector3D fingers;
    QVector3D palm;
    QVector3D thumbSide;
    float open = 0;
};

struct Arm {
    QVector3D shoulder;
    QVector3D elbow;
    Hand hand;
};

struct Leg {
    QVector3D hip, knee, ankle, toe;
};

enum Side { RightSide = 0, LeftSide = 1 };

// The figure's joints in space for one pose: what the painter draws.
struct Body {
    std::array<Ball, 8> torso; // hips, waist, chest and shoulders, right then left
    QVector3D neckBase;
    QVector3D neckTop;
    QVector3D headCentre;
    QQuaternion head; // turns the head's own frame (x to its left, y up, z out of the face) into space
    std::array<Arm, 2> arms;
    std::array<Leg, 2> legs;
    float gazeX = 0;
    float gazeY = 0;
    float eyesOpen = 1;
};

// The figure's measures, in centimetres: a friendly, slightly large-headed grown-up.
namespace proportions {
inline constexpr float headRadius = 11;
inline constexpr float neckRadius = 4.6f;
inline constexpr float upperArm = 27;
inline constexpr float forearm = 25;
inline constexpr float upperArmRadius = 4.4f;
inline constexpr float forearmRadius = 3.7f;
inline constexpr float thighRadius = 7;
inline constexpr float shinRadius = 5.4f;
inline constexpr float footRadius = 3.8f;
inline constexpr float palmLength = 7.5f;
inline constexpr float palmWidth = 7.5f;
inline constexpr float fingerRadius = 1.45f;
inline constexpr float thumbRadius = 1.75f;
} // namespace proportions

Body bodyFor(const Pose& pose);

// Where the elbow of a two-part limb goes: `shoulder` and `wrist` are the ends, the elbow bends
// towards `toward` (a direction). A wrist out of reach leaves the arm straight, pointing at it.
QVector3D elbowBetween(const QVector3D& shoulder, const QVector3D& wrist, const QVector3D& toward,
                       float upper, float lower);

} // namespace tarvo
