#pragma once

namespace tarvo {

class Clock;
class MainView;
class Timer;
class Warnings;
struct SchedulerState;
struct SettingsRecord;

// One micropause: the countdown bar filled in 100 ms steps from 1 to InterruptFor × 10, on top of
// everything, with the warning before and the notification after. The break lasts one step short of
// InterruptFor seconds, (10 × InterruptFor − 1) ticks, because the bar starts at 1 and the break ends
// on the tick that fills it.
class MicropauseBreak {
public:
    MicropauseBreak(const SettingsRecord& settings, SchedulerState& state, Timer& tSeconds,
                    Warnings& warnings, MainView& view, const Clock& clock);
    MicropauseBreak(const MicropauseBreak&) = delete;
    MicropauseBreak& operator=(const MicropauseBreak&) = delete;

    // Starts a break (and restarts the countdown to the next one). A second call during a break
    // starts the bar again from 1.
    void TarvoMicropause();
    // One tSeconds tick of a running break.
    void breakTick();
    // Esc, or a double click on the hint: unless Esc is disabled, the next tick ends the break the
    // ordinary way, status text and end sound included.
    void cmdCancel_Click();
    // Before the options dialog opens: a running break more than 3 steps from its end is brought to
    // its last step, so that it ends at the next tick and the options are never edited during one.
    void cutShort();
    // The screen was locked: a running break ends now, as taken, without the end sound.
    void endAsTaken();

private:
    void finish(bool withSound);

    const SettingsRecord& settings_;
    SchedulerState& state_;
    Timer& tSeconds_;
    Warnings& warnings_;
    MainView& view_;
    const Clock& clock_;
};

} // namespace tarvo
