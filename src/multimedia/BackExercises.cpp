// The back: sitting still for hours stiffens the spine; these move it through its range, gently.
#include "multimedia/Catalogue.h"

namespace tarvo {

namespace {

Pose sideBend(float side) {
    // `side` 1 leans to the figure's right with the left arm over the head; -1 the mirror image.
    const ArmPose over{.wrist = {-3, 92, 3},
                       .elbowToward = {1, 0.3f, 0},
                       .fingers = {-0.5f, 1, 0},
                       .palm = {-1, 0, 0},
                       .open = 0.3f};
    const ArmPose down{.wrist = {18, 15, 20},
                       .elbowToward = {1, -0.3f, -0.2f},
                       .fingers = {0, -0.4f, 1},
                       .palm = {0, -1, 0},
                       .open = 0.1f};
    Pose p;
    p.lean = -16 * side;
    p.headTilt = -8 * side;
    p.left = side > 0 ? over : down;
    p.right = side > 0 ? down : over;
    return p;
}

Medium sideBends() {
    return {.file = QStringLiteral("sidebend.avi"),
            .view = views::front,
            .framing = framing::armsUp,
            .motion = Motion({{Pose{}, 0.4f, 1.6f},
                              {sideBend(1), 1.6f, 1.6f},
                              {Pose{}, 0.4f, 1.6f},
                              {sideBend(-1), 1.6f, 1.6f}}),
            .hints = {arcHint(Anchor::Head, {0, -34}, 50, 62, 118, true)},
            .keepInFrame = {Anchor::Head, Anchor::LeftHand, Anchor::RightHand}};
}

Medium twist() {
    auto turned = [](float degrees) {
        Pose p;
        p.right = {.wrist = {-10, 40, 14},
                   .elbowToward = {1, -1, 0.3f},
                   .fingers = {-0.8f, 0.6f, 0},
                   .palm = {0, 0, -1}};
        p.left = p.right;
        p.left.wrist = {-10, 38.5f, 16.5f};
        p.twist = degrees;
        p.headTurn = degrees * 0.4f;
        return p;
    };
    return {.file = QStringLiteral("twist.avi"),
            .view = views::front,
            .framing = framing::upperBody,
            .motion = Motion({{turned(0), 0.3f, 1.5f},
                              {turned(35), 1.4f, 1.5f},
                              {turned(0), 0.3f, 1.5f},
                              {turned(-35), 1.4f, 1.5f}}),
            .hints = {turnHint(Anchor::Chest, {0, -16}, 30)},
            .keepInFrame = {Anchor::Head, Anchor::LeftHand, Anchor::RightHand}};
}

Medium roundAndTall() {
    const ArmPose onKnees{.wrist = {12, 14, 36},
                          .elbowToward = {0.3f, -1, -0.3f},
                          .fingers = {0, -0.5f, 1},
                          .palm = {0, -1, 0}};
    Pose round = withArms({}, onKnees);
    round.bend = 16;
    round.headNod = 28;
    round.left.shoulderForward = round.right.shoulderForward = 3;
    Pose tall = withArms({}, onKnees);
    tall.bend = -6;
    tall.headNod = -6;
    tall.breath = 1;
    tall.left.shoulderForward = tall.right.shoulderForward = -2;
    return {.file = QStringLiteral("catcow.avi"),
            .view = views::side,
            .framing = framing::upperBody,
            .motion = Motion({{round, 1.2f, 1.8f}, {tall, 1.2f, 1.8f}}),
            .keepInFrame = {Anchor::Head, Anchor::Chest}};
}

Medium reachUp() {
    // The arms rise out to the sides and meet overhead, where the figure stretches and breathes in.
    Pose side = withArms({}, {.wrist = {66, 50, 5},
                              .elbowToward = {0, -1, -0.3f},
                              .fingers = {1, 0.3f, 0},
                              .palm = {0, -1, 0},
                              .open = 0.3f});
    side.breath = 0.5f;
    Pose up = withArms({}, {.wrist = {11, 92, 4},
                            .elbowToward = {1, 0, 0},
                            .fingers = {0, 1, 0},
                            .palm = {-1, 0, 0},
                            .open = 0.4f});
    up.breath = 1;
    up.headNod = -6;
    up.gazeY = 0.4f;
    return {.file = QStringLiteral("reachup.avi"),
            .view = views::front,
            .framing = framing::armsUp,
            .motion = Motion({{Pose{}, 0.5f, 0.9f, Ease::In},
                              {side, 0, 0.9f, Ease::Out},
                              {up, 1.6f, 0.9f, Ease::In},
                              {side, 0, 0.9f, Ease::Out}}),
            .hints = {lineHint(Anchor::LeftShoulder, {18, 8}, {0, 22}, true)},
            .keepInFrame = {Anchor::Head, Anchor::LeftHand, Anchor::RightHand}};
}

} // namespace

std::vector<Medium> backExercises() {
    std::vector<Medium> all;
    all.push_back(reachUp());
    all.push_back(sideBends());
    all.push_back(twist());
    all.push_back(roundAndTall());
    return all;
}

} // namespace tarvo
