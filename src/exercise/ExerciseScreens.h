#pragma once

#include "controls/ExerciseMedia.h"
#include "engine/ExerciseView.h"
#include "exercise/frmChkExercise.h"

#include <QPointer>

#include <functional>
#include <memory>

namespace tarvo {

class ExerciseSequencer;
class frmX;
struct AppContext;

// The exercise break's screens: the prompt, loaded each time a break is offered, and the player,
// loaded at the first exercise and kept, hidden, for the rest of the run (its window is given back
// between breaks).
class ExerciseScreens : public ExerciseView {
public:
    explicit ExerciseScreens(AppContext& context);
    ~ExerciseScreens() override;

    // The exercise break that the screens' buttons and gestures act on; before any screen is shown.
    void attach(ExerciseSequencer& sequencer);
    // Runs once a break is over and the player's window is gone (the program gives memory back).
    void setAfterBreak(std::function<void()> afterBreak) { afterBreak_ = std::move(afterBreak); }

    void showExercisePrompt() override;
    void preparePlayer() override;
    void setPlayerCaption(const QString& caption) override;
    void CloseVideo() override;
    void showExercise(const QString& file, bool topmost) override;
    void dismissPlayer() override;

    // The forms while they are loaded (for tests), null otherwise.
    frmX* player() const { return player_.get(); }
    frmChkExercise* prompt() const { return prompt_; }

private:
    frmX& loadedPlayer();

    AppContext& ctx_;
    ExerciseMedia media_;
    ExerciseSequencer* sequencer_ = nullptr;
    std::unique_ptr<frmX> player_;
    QPointer<frmChkExercise> prompt_;
    std::function<void()> afterBreak_;
};

} // namespace tarvo
