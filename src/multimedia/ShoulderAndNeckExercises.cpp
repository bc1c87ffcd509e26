// Shoulders and neck: where a day at the screen gathers as tension.
#include "multimedia/Catalogue.h"

#include <cmath>

namespace tarvo {

namespace {

// Hands resting on the thighs, seen from the side under the desk top.
const ArmPose handsOnThighs{
    .wrist = {12, 13, 27}, .elbowToward = {0.2f, -1, -0.6f}, .fingers = {0, -0.25f, 1}, .palm = {0, -1, 0}};

Medium shoulderRoll() {
    // The shoulders go round: forward, up, back and down, on a circle of a few centimetres.
    std::vector<Key> keys;
    for (int i = 0; i < 8; ++i) {
        const float a = 0.785398f * static_cast<float>(i);
        ArmPose arm = handsOnThighs;
        arm.shoulderForward = 4.5f * std::cos(a);
        arm.shoulderUp = 3 + 4.5f * std::sin(a);
        keys.push_back({withArms({}, arm), 0, 0.5f, Ease::Linear});
    }
    return {.file = QStringLiteral("shoulderroll.avi"),
            .view = views::side,
            .framing = {{0, 46, 8}, 76},
            .motion = Motion(std::move(keys)),
            .hints = {arcHint(Anchor::RightShoulder, {0, 2}, 8, -30, 250)},
            .keepInFrame = {Anchor::Head, Anchor::RightShoulder}};
}

Medium shrug() {
    Pose up;
    up.left.shoulderUp = up.right.shoulderUp = 6.5f;
    return {.file = QStringLiteral("shrug.avi"),
            .view = views::front,
            .framing = framing::upperBody,
            .motion = Motion({{Pose{}, 0.7f, 1.2f}, {up, 1.0f, 0.6f}}),
            .hints = {lineHint(Anchor::RightShoulder, {-9, 4}, {0, 9}, true),
                      lineHint(Anchor::LeftShoulder, {9, 4}, {0, 9}, true)},
            .keepInFrame = {Anchor::Head, Anchor::LeftShoulder, Anchor::RightShoulder}};
}

Medium neckTurn() {
    auto turned = [](float degrees) {
        Pose p;
        p.headTurn = degrees;
        p.gazeX = degrees / 120;
        return p;
    };
    return {.file = QStringLiteral("neckturn.avi"),
            .view = views::front,
            .framing = framing::headAndShoulders,
            .motion = Motion({{turned(0), 0.4f, 1.4f},
                              {turned(55), 1.0f, 1.4f},
                              {turned(0), 0.4f, 1.4f},
                              {turned(-55), 1.0f, 1.4f}}),
            .hints = {turnHint(Anchor::Head, {0, 17}, 12)},
            .keepInFrame = {Anchor::Head}};
}

Medium neckTilt() {
    auto tilted = [](float degrees) {
        Pose p;
        p.headTilt = degrees;
        return p;
    };
    return {.file = QStringLiteral("necktilt.avi"),
            .view = views::front,
            .framing = framing::headAndShoulders,
            .motion = Motion({{tilted(0), 0.3f, 1.5f},
                              {tilted(28), 1.5f, 1.5f},
                              {tilted(0), 0.3f, 1.5f},
                              {tilted(-28), 1.5f, 1.5f}}),
            .hints = {arcHint(Anchor::Head, {0, -3}, 17, 62, 118, true)},
            .keepInFrame = {Anchor::Head}};
}

Medium chinTuck() {
    Pose tucked;
    tucked.chinBack = 3.5f;
    tucked.headNod = 6;
    return {.file = QStringLiteral("chintuck.avi"),
            .view = views::side,
            .framing = framing::headAndShoulders,
            .motion = Motion({{Pose{}, 0.8f, 1.0f}, {tucked, 1.5f, 1.0f}}),
            .hints = {lineHint(Anchor::Chin, {8, 0}, {-6, 0})},
            .keepInFrame = {Anchor::Head}};
}

Medium chestOpen() {
    Pose hug = withArms({}, {.wrist = {8, 40, 32},
                             .elbowToward = {1, -0.3f, 0.5f},
                             .fingers = {-1, 0.1f, 0.3f},
                             .palm = {0, 0, -1}});
    hug.bend = 6;
    Pose open = withArms({}, {.wrist = {36, 58, -3},
                              .elbowToward = {1, -0.2f, -0.5f},
                              .fingers = {0.1f, 1, 0},
                              .palm = {0, 0, 1},
                              .open = 0.3f});
    open.bend = -6;
    open.breath = 1;
    open.headNod = -4;
    return {.file = QStringLiteral("chestopen.avi"),
            .view = views::threeQuarter,
            .framing = framing::upperBody,
            .motion = Motion({{hug, 0.8f, 1.5f}, {open, 1.4f, 1.3f}}),
            .keepInFrame = {Anchor::Head, Anchor::LeftHand, Anchor::RightHand}};
}

Medium armCross() {
    Pose pose;
    pose.right = {
        .wrist = {-30, 42, 18}, .elbowToward = {0, 0, 1}, .fingers = {-1, 0.05f, 0.1f}, .palm = {0, 0, -1}};
    pose.left = {.wrist = {7, 41, 15},
                 .elbowToward = {0.3f, -1, 0.4f},
                 .fingers = {-1, 0.2f, 0},
                 .palm = {0, 0, -1},
                 .open = 0.1f};
    pose.headTurn = 12;
    return {.file = QStringLiteral("armcross.bmp"),
            .view = views::front,
            .framing = framing::upperBody,
            .motion = Motion({{pose, 1, 0}}),
            .keepInFrame = {Anchor::Head, Anchor::LeftHand, Anchor::RightHand}};
}

} // namespace

std::vector<Medium> shoulderAndNeckExercises() {
    std::vector<Medium> all;
    all.push_back(shoulderRoll());
    all.push_back(shrug());
    all.push_back(neckTurn());
    all.push_back(neckTilt());
    all.push_back(chinTuck());
    all.push_back(chestOpen());
    all.push_back(armCross());
    return all;
}

} // namespace tarvo
