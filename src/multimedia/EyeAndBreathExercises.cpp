// Eyes and breathing: the screen holds the eyes at one distance for hours, and concentration makes the
// breath shallow.
#include "multimedia/Catalogue.h"

namespace tarvo {

namespace {

Medium palming() {
    Pose pose = withArms({}, {.wrist = {5.5f, 58, 14},
                              .elbowToward = {0.3f, -1, 0.6f},
                              .fingers = {-0.25f, 1, 0.05f},
                              .palm = {0, 0, -1}});
    pose.bend = 8;
    pose.headNod = 8;
    pose.eyesOpen = 0;
    return {.file = QStringLiteral("palming.bmp"),
            .view = views::front,
            .framing = framing::upperBody,
            .motion = Motion({{pose, 1, 0}}),
            .keepInFrame = {Anchor::Head, Anchor::LeftHand, Anchor::RightHand}};
}

Medium eyeMoves() {
    auto looking = [](float x, float y) {
        Pose p;
        p.gazeX = x;
        p.gazeY = y;
        return p;
    };
    return {.file = QStringLiteral("eyemoves.avi"),
            .view = views::front,
            .framing = framing::headAndShoulders,
            .motion = Motion({{looking(0, 0), 0.5f, 0.5f},
                              {looking(0, 1), 0.8f, 0.5f},
                              {looking(0, 0), 0.3f, 0.5f},
                              {looking(0, -1), 0.8f, 0.5f},
                              {looking(0, 0), 0.3f, 0.5f},
                              {looking(-1, 0), 0.8f, 0.5f},
                              {looking(0, 0), 0.3f, 0.5f},
                              {looking(1, 0), 0.8f, 0.5f}}),
            .hints = {lineHint(Anchor::Head, {0, 13}, {0, 6}), lineHint(Anchor::Head, {-14, 0}, {-6, 0}),
                      lineHint(Anchor::Head, {14, 0}, {6, 0}), lineHint(Anchor::Head, {0, -14}, {0, -6})},
            .keepInFrame = {Anchor::Head}};
}

Medium lookFar() {
    Pose pose;
    pose.headNod = -7;
    pose.gazeY = 0.35f;
    return {.file = QStringLiteral("lookfar.bmp"),
            .view = views::side,
            .framing = {{0, 55, 48}, 112},
            .motion = Motion({{pose, 1, 0}}),
            .hints = {lineHint(Anchor::Head, {14, 4}, {34, 9})},
            .backdrop = Backdrop::OpenWindow,
            .keepInFrame = {Anchor::Head}};
}

Medium breathe() {
    Pose in;
    in.breath = 1;
    in.eyesOpen = 0;
    in.headNod = -3;
    Pose out;
    out.eyesOpen = 0;
    out.headNod = 2;
    return {.file = QStringLiteral("breathe.avi"),
            .view = views::front,
            .framing = framing::upperBody,
            .motion = Motion({{out, 0.8f, 3.0f}, {in, 0.6f, 3.6f}}),
            .hints = {breathHint(30)},
            .keepInFrame = {Anchor::Head, Anchor::Chest}};
}

} // namespace

std::vector<Medium> eyeAndBreathExercises() {
    std::vector<Medium> all;
    all.push_back(palming());
    all.push_back(eyeMoves());
    all.push_back(lookFar());
    all.push_back(breathe());
    return all;
}

} // namespace tarvo
