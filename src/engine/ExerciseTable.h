#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace tarvo {

// One exercise of a scheme.
struct ExerciseRecord {
    QString File;             // media file: ".avi" plays as video, ".bmp" shows as picture
    QString Caption;          // what to do, shown while it plays
    std::int32_t Include = 0; // 0: left out of exercise breaks
    std::int32_t Seconds = 0; // how long it is shown

    bool operator==(const ExerciseRecord&) const = default;
};

// The exercises of the current scheme. Index 0 always holds the title entry; the real exercises are
// at 1 … ExerciseCount. The table has room for a hundred more, so the scheme editor can append
// without growing it.
struct ExerciseTable {
    std::vector<ExerciseRecord> Exercises;
    std::int32_t ExerciseCount = 0;
    QString CurrentScheme;
};

// The opening shown once per run before the first exercise. It lives in no scheme.
inline ExerciseRecord titleExercise() {
    return {QStringLiteral("title.avi"), QStringLiteral("Gently now..."), 1, 10};
}

} // namespace tarvo
