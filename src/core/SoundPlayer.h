#pragma once

#include <QString>

namespace tarvo {

// Sounds and the pauses between them. Every failure is silence: a missing, unreadable or non-audio
// file plays nothing (and no beep in its place), and with no sound server at all every call still
// returns, within its own time.
class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;

    // Plays the file and returns when it has finished (or after a time-out, for a sound that never
    // reports its end).
    virtual void playSync(const QString& path) = 0;
    // Starts the file and returns at once; it plays on.
    virtual void playAsync(const QString& path) = 0;
    // The standard computer beep. Returns at once.
    virtual void beep() = 0;
    // A plain sleep of the calling (user-interface) thread: nothing else of the program runs meanwhile.
    virtual void sleep(int milliseconds) = 0;
};

} // namespace tarvo
