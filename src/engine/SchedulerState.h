#pragma once

#include <array>
#include <cstdint>

namespace tarvo {

// Where the schedule stands. One per process, created by start-up and handed by reference to the
// scheduler, the break screen, the exercise break and the options dialog, which all write parts of it.
struct SchedulerState {
    // Whole minutes left until the next micropause; counted only while the exercise prompt is up.
    std::int32_t MinutesToMicropause = 0;
    // The interval in effect, that MinutesToMicropause is reloaded with; taken from InterruptEvery
    // by SetTimers and by Apply.
    std::int32_t MicropauseReload = 0;
    // Whole minutes left until the exercise prompt; counted while the prompt is not up. It may go
    // below 0 (after an interval of 0) and then never offers a break.
    std::int32_t MinutesToExercise = 0;
    // From the moment the exercise prompt is shown until it unloads.
    bool ExercisePromptPending = false;
    // While the micropause break screen runs: tSeconds ticks belong to it.
    bool InMicropause = false;
    // While an exercise break runs: tSeconds ticks belong to the exercise sequencer.
    bool InExerciseBreak = false;
    // The last stamps read from the activity monitor, per input channel (0 keyboard, 1 mouse), on the
    // tick-count time base. Start-up seeds both with the tick count.
    std::array<std::int32_t, 2> LastActivityTimes{0, 0};
};

} // namespace tarvo
