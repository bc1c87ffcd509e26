#pragma once

#include "core/Timer.h"
#include "engine/ExerciseSequencer.h"
#include "engine/MicropauseBreak.h"
#include "engine/PresenceHold.h"
#include "engine/Scheduler.h"

#include <memory>

namespace tarvo {

class ExerciseView;
class MainView;
class Warnings;
struct AppContext;

// The display-free break engine: the two timers that drive everything (tMinutes once a minute;
// tSeconds for the natural-pause check, the micropause's 100 ms steps and the exercise break's seconds),
// the scheduler they drive and the breaks it hands over to. It talks to the screens through MainView
// and ExerciseView and to the speakers through Warnings; the forms forward their events to its parts.
//
// The timers stay off until start-up calls SetTimers.
class BreakEngine : private Timer::Listener {
public:
    BreakEngine(AppContext& context, MainView& view, ExerciseView& exerciseView, Warnings& warnings);
    ~BreakEngine();
    BreakEngine(const BreakEngine&) = delete;
    BreakEngine& operator=(const BreakEngine&) = delete;

    Scheduler& scheduler() { return scheduler_; }
    MicropauseBreak& micropause() { return micropause_; }
    ExerciseSequencer& exercise() { return exercise_; }
    PresenceHold& presence() { return presence_; }
    Timer& tMinutes() { return *tMinutes_; }
    Timer& tSeconds() { return *tSeconds_; }

private:
    void timerTick(Timer& timer) override;

    std::unique_ptr<Timer> tMinutes_;
    std::unique_ptr<Timer> tSeconds_;
    MicropauseBreak micropause_;
    PresenceHold presence_; // holds breaks for scheduler_, built just after it
    Scheduler scheduler_;   // hands the exercise break's seconds to exercise_, built just after it
    ExerciseSequencer exercise_;
};

} // namespace tarvo
