// Hands, fingers, wrists and forearms: what holds the mouse and types all day.
#include "multimedia/Catalogue.h"

#include <cmath>

namespace tarvo {

namespace {

// Hands held up in front of the shoulders, palms to the viewer.
ArmPose handsUp(float open) {
    return {.wrist = {19, 38, 24},
            .elbowToward = {0.6f, -1, 0},
            .fingers = {0.05f, 1, 0.05f},
            .palm = {0, 0, 1},
            .open = open};
}

Medium fingers() {
    return {.file = QStringLiteral("fingers.avi"),
            .view = views::front,
            .framing = framing::hands,
            .motion =
                Motion({{withArms({}, handsUp(-1)), 0.8f, 0.9f}, {withArms({}, handsUp(1)), 1.4f, 0.9f}}),
            .keepInFrame = {Anchor::LeftHand, Anchor::RightHand, Anchor::Head}};
}

Medium shakeHands() {
    // Forearms up, hands hanging loose from the wrists and flapping from side to side.
    auto loose = [](float swing) {
        return withArms({}, {.wrist = {20, 37, 22},
                             .elbowToward = {0.6f, -1, 0},
                             .fingers = {swing, 1, 0.35f},
                             .palm = {0, 0, 1},
                             .open = 0.25f});
    };
    std::vector<Key> keys;
    for (int i = 0; i < 6; ++i)
        keys.push_back({loose(i % 2 ? 0.75f : -0.55f), 0, 0.2f, Ease::Smooth});
    return {.file = QStringLiteral("shakehands.avi"),
            .view = views::front,
            .framing = framing::hands,
            .motion = Motion(std::move(keys)),
            .hints = {arcHint(Anchor::RightHand, {0, -4}, 11, 60, 120, true),
                      arcHint(Anchor::LeftHand, {0, -4}, 11, 60, 120, true)},
            .keepInFrame = {Anchor::LeftHand, Anchor::RightHand, Anchor::Head}};
}

Medium wristCircles() {
    // The fingers trace a cone round the forearm: out, up, in, down, then the other way round.
    auto circling = [](float degrees) {
        const float a = degrees * 3.14159265f / 180;
        return withArms({}, {.wrist = {14, 33, 30},
                             .elbowToward = {0.5f, -1, -0.2f},
                             .fingers = QVector3D(0.7f * std::cos(a), 0.7f * std::sin(a), 1),
                             .palm = {0, -1, 0},
                             .open = -0.35f});
    };
    std::vector<Key> keys;
    for (int i = 0; i < 8; ++i)
        keys.push_back({circling(45.0f * static_cast<float>(i)), 0, 0.45f, Ease::Linear});
    for (int i = 8; i > 0; --i)
        keys.push_back({circling(45.0f * static_cast<float>(i)), i == 8 ? 0.3f : 0.0f, 0.45f, Ease::Linear});
    keys.front().hold = 0.3f;
    return {.file = QStringLiteral("wristcircles.avi"),
            .view = views::threeQuarter,
            .framing = framing::hands,
            .motion = Motion(std::move(keys)),
            .hints = {arcHint(Anchor::RightHand, {0, 0}, 9, 200, -120, true)},
            .keepInFrame = {Anchor::LeftHand, Anchor::RightHand, Anchor::Head}};
}

Medium wristStretch() {
    Pose pose;
    pose.right = {.wrist = {17, 40, 50},
                  .elbowToward = {0.3f, -1, 0},
                  .fingers = {0, 1, -0.3f},
                  .palm = {0, 0.3f, 1},
                  .open = 0.2f};
    pose.left = {.wrist = {-12, 45, 57},
                 .elbowToward = {0.5f, -1, 0},
                 .fingers = {-1, 0.6f, 0},
                 .palm = {0, 0, -1},
                 .open = 0.1f};
    return {.file = QStringLiteral("wriststretch.bmp"),
            .view = {65, 8},
            .framing = {{0, 44, 26}, 76},
            .motion = Motion({{pose, 1, 0}}),
            .keepInFrame = {Anchor::LeftHand, Anchor::RightHand, Anchor::Head}};
}

Medium palmPress() {
    auto pressed = [](float height, float tiltBack) {
        return withArms({}, {.wrist = {2.6f, height, 17},
                             .elbowToward = {1, -0.5f, 0},
                             .fingers = {0, 1, tiltBack},
                             .palm = {-1, 0, 0},
                             .open = 0.1f});
    };
    return {.file = QStringLiteral("palmpress.avi"),
            .view = views::front,
            .framing = framing::upperBody,
            .motion = Motion({{pressed(46, 0.1f), 0.8f, 2.0f}, {pressed(31, 0.3f), 1.2f, 1.6f}}),
            .hints = {lineHint(Anchor::RightHand, {-13, 4}, {0, -12})},
            .keepInFrame = {Anchor::LeftHand, Anchor::RightHand, Anchor::Head}};
}

Medium palmTurn() {
    auto turned = [](QVector3D palm) {
        return withArms({}, {.wrist = {24, 41, 28},
                             .elbowToward = {0.2f, -1, -0.5f},
                             .fingers = {0, 0.05f, 1},
                             .palm = palm,
                             .open = 0.2f});
    };
    const Pose down = turned({0, -1, 0});
    const Pose in = turned({-1, 0, 0});
    const Pose up = turned({0, 1, 0});
    return {.file = QStringLiteral("palmturn.avi"),
            .view = views::front,
            .framing = framing::hands,
            .motion = Motion({{down, 0.7f, 0.45f, Ease::In},
                              {in, 0, 0.45f, Ease::Out},
                              {up, 0.7f, 0.45f, Ease::In},
                              {in, 0, 0.45f, Ease::Out}}),
            .hints = {arcHint(Anchor::RightHand, {0, 0}, 8, 200, 340, true),
                      arcHint(Anchor::LeftHand, {0, 0}, 8, 200, 340, true)},
            .keepInFrame = {Anchor::LeftHand, Anchor::RightHand, Anchor::Head}};
}

} // namespace

std::vector<Medium> handExercises() {
    std::vector<Medium> all;
    all.push_back(fingers());
    all.push_back(shakeHands());
    all.push_back(wristCircles());
    all.push_back(wristStretch());
    all.push_back(palmPress());
    all.push_back(palmTurn());
    return all;
}

} // namespace tarvo
