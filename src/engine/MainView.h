#pragma once

#include <QString>

namespace tarvo {

class CountdownBar;

// What the engine shows on the main form: the micropause break screen, in the steps a break takes,
// and the status texts. The main form implements it; tests record it. Every call comes from a timer
// tick or an event on the user-interface thread.
class MainView {
public:
    virtual ~MainView() = default;

    // The break screen's countdown bar.
    virtual CountdownBar& countdownBar() = 0;
    // Before the warning sounds: the OK button goes, the countdown bar comes, and the Esc hint comes
    // when the user may end the break early.
    virtual void prepareBreak(bool escAllowed) = 0;
    // After the warning: on top of every other window, either covering every monitor (blank) or at
    // the form's own size; painted at once, with the focus so that Esc reaches it.
    virtual void presentBreak(bool blank) = 0;
    // The break is over: below every other window, hidden, back to the status panel's controls; the
    // window the user was working in has the keyboard again.
    virtual void dismissBreak() = 0;

    // The captions of lbltarvo ("Last tarvo micropause: hh:nn"), lblExercise ("Next Exercise Break:
    // <n> minutes") and lblvoluntary ("Last natural micropause: hh:nn").
    virtual void showLastMicropause(const QString& text) = 0;
    virtual void showExerciseStatus(const QString& text) = 0;
    virtual void showVoluntaryStatus(const QString& text) = 0;
    // Where natural pauses are detected from, or why they are not (ActivityMonitor::description).
    virtual void showActivitySource(const QString& text) = 0;
    // What holds breaks back now ("Screen locked", "Held: full-screen window", ...), empty for nothing.
    virtual void showPresenceStatus(const QString& text) = 0;
};

} // namespace tarvo
