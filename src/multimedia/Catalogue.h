#pragma once

#include "multimedia/Medium.h"

#include <vector>

namespace tarvo {

// The opening "Gently now...", shown once per run before the first exercise.
Medium titleMedium();

// The exercises, grouped by the part of the body they serve. Each group lists its media in no
// particular order; the schemes in tarvo32.reg decide which are played when.
std::vector<Medium> handExercises();
std::vector<Medium> shoulderAndNeckExercises();
std::vector<Medium> backExercises();
std::vector<Medium> eyeAndBreathExercises();

// Every built-in medium: the opening first, then all exercises.
std::vector<Medium> builtInMedia();

} // namespace tarvo
