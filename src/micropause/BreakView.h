#pragma once

#include <QString>

namespace tarvo {

// What the micropause shows and hides, in the steps the break takes them. The main form implements it;
// tests record it.
class BreakView {
public:
    virtual ~BreakView() = default;

    // Before the warning sounds: the OK button goes, the countdown bar comes, and the Esc hint comes
    // when the user may end the break early.
    virtual void prepareBreak(bool escAllowed) = 0;
    // After the warning: on top of every other window, either covering every monitor (blank) or at
    // the form's own size; painted at once, and with the keyboard so that Esc reaches it.
    virtual void presentBreak(bool blank) = 0;
    // The break is over: below every other window, hidden, back to the status panel's controls; the
    // window the user was working in has the keyboard again.
    virtual void dismissBreak() = 0;
    // The caption of lbltarvo.
    virtual void showLastMicropause(const QString& text) = 0;
};

} // namespace tarvo
