#include "exercise/ExerciseScreens.h"

#include "engine/AppContext.h"
#include "exercise/frmChkExercise.h"
#include "exercise/frmX.h"

#include <QMetaObject>

namespace tarvo {

ExerciseScreens::ExerciseScreens(AppContext& context)
    : ctx_(context)
    , media_(context.media, context.programFolder) {}

ExerciseScreens::~ExerciseScreens() {
    delete prompt_.data();
}

void ExerciseScreens::attach(ExerciseSequencer& sequencer) {
    sequencer_ = &sequencer;
}

void ExerciseScreens::showExercisePrompt() {
    // One prompt at a time: one that is up already is only brought to the front.
    if (!prompt_)
        prompt_ = new frmChkExercise(*sequencer_, ctx_.windowSession);
    prompt_->show();
    prompt_->raise();
}

frmX& ExerciseScreens::loadedPlayer() {
    if (!player_)
        player_ = std::make_unique<frmX>(ctx_.record, media_, *sequencer_, ctx_.windowSession);
    return *player_;
}

void ExerciseScreens::preparePlayer() {
    loadedPlayer().prepare();
}

void ExerciseScreens::setPlayerCaption(const QString& caption) {
    loadedPlayer().setWindowTitle(caption);
}

void ExerciseScreens::CloseVideo() {
    media_.CloseVideo();
}

void ExerciseScreens::showExercise(const QString& file, bool topmost) {
    loadedPlayer().showExercise(file, topmost);
}

void ExerciseScreens::dismissPlayer() {
    if (!player_)
        return;
    player_->dismiss();
    // The break may end inside one of the player's own handlers (its previous button): the window
    // goes once they are done, unless a new break has shown it again by then.
    QMetaObject::invokeMethod(
        player_.get(),
        [this] {
            player_->releaseWindow();
            if (afterBreak_)
                afterBreak_();
        },
        Qt::QueuedConnection);
}

} // namespace tarvo
