#include "multimedia/Catalogue.h"

namespace tarvo {

Medium titleMedium() {
    // Slow, even breathing with closed eyes: a calm first picture that loops without a seam.
    Pose in;
    in.breath = 1;
    in.eyesOpen = 0;
    in.headNod = -4;
    Pose out;
    out.eyesOpen = 0;
    out.headNod = 3;
    return {QStringLiteral("title.avi"),
            views::front,
            {{0, 49, 12}, 104},
            Motion({{out, 0.6f, 4.0f}, {in, 0.6f, 4.8f}}),
            {},
            Backdrop::Wall,
            QStringLiteral("Gently now..."),
            {Anchor::Head}};
}

std::vector<Medium> builtInMedia() {
    std::vector<Medium> all{titleMedium()};
    for (auto group : {handExercises, shoulderAndNeckExercises, backExercises, eyeAndBreathExercises})
        for (Medium& m : group())
            all.push_back(std::move(m));
    return all;
}

} // namespace tarvo
