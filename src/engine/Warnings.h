#pragma once

namespace tarvo {

// The four warnings. Each blocks the calling (user-interface) thread until its beep pattern is over,
// or, with a sound file chosen, until the file has played (synchronous warnings) or has started
// (the exercise warning).
class Warnings {
public:
    virtual ~Warnings() = default;
    virtual void AudibleWarningPre() = 0;   // shortly before a micropause
    virtual void AudibleWarning() = 0;      // at the start of a micropause
    virtual void AudibleWarningX() = 0;     // when an exercise break is due
    virtual void AudibleNotification() = 0; // a single beep, at the end of a micropause
};

} // namespace tarvo
