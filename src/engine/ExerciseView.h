#pragma once

#include <QString>

namespace tarvo {

// What the engine shows of the exercise breaks: the prompt that offers one, and the player that runs
// one. The exercise subsystem implements it. Every call comes from a timer tick or an event on the
// user-interface thread.
class ExerciseView {
public:
    virtual ~ExerciseView() = default;

    // Loads the prompt and shows it on top of every other window, without taking the keyboard from
    // what the user is doing.
    virtual void showExercisePrompt() = 0;

    // A break starts: the player's media surface gets its black ground, its button bar its running
    // state.
    virtual void preparePlayer() = 0;
    // The player's title: the exercise's caption and its seconds left.
    virtual void setPlayerCaption(const QString& caption) = 0;
    // Closes the video on the player's device ("close tarvox"); harmless when none is open.
    virtual void CloseVideo() = 0;
    // Shows the exercise's medium on the player and the player itself, laid out for the options of the
    // moment (blanked or not, the video size), a video playing over and over; `topmost` also puts the
    // player above every other window.
    virtual void showExercise(const QString& file, bool topmost) = 0;
    // The break is over: the player is no longer on top, minimised and hidden.
    virtual void dismissPlayer() = 0;
};

} // namespace tarvo
