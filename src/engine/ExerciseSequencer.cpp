#include "engine/ExerciseSequencer.h"

#include "core/Checked.h"
#include "core/MessageBox.h"
#include "core/RandomSource.h"
#include "core/RuntimeError.h"
#include "core/Timer.h"
#include "core/VbConvert.h"
#include "engine/AppContext.h"
#include "engine/ExerciseView.h"
#include "engine/MainView.h"
#include "engine/Scheduler.h"
#include "engine/Warnings.h"
#include "settings/Options.h"

#include <algorithm>

namespace tarvo {

ExerciseSequencer::ExerciseSequencer(AppContext& context, Timer& tMinutes, Timer& tSeconds,
                                     Scheduler& scheduler, ExerciseView& view, MainView& mainView,
                                     Warnings& warnings, HistoryTap& history)
    : ctx_(context)
    , tMinutes_(tMinutes)
    , tSeconds_(tSeconds)
    , scheduler_(scheduler)
    , view_(view)
    , mainView_(mainView)
    , warnings_(warnings)
    , history_(history) {}

void ExerciseSequencer::ExerciseBreak() {
    const ExerciseTable& table = ctx_.exercises;
    const auto last = std::min<std::int64_t>(table.ExerciseCount, std::ssize(table.Exercises) - 1);
    bool anyIncluded = false;
    for (std::int64_t i = 1; i <= last && !anyIncluded; ++i)
        anyIncluded = table.Exercises[static_cast<size_t>(i)].Include != 0;
    if (!anyIncluded) {
        scheduler_.SetTimers();
        return;
    }
    ExercisesPlayed = 0;
    breakStarted_ = history_.now();
    exercisesShown_ = 0;
    exercisesPlanned_ = ExercisesPerBreak;
    quit_ = false;
    tSeconds_.setEnabled(false);
    tMinutes_.setEnabled(false);
    tSeconds_.setInterval(1000);
    view_.preparePlayer();
    ctx_.schedule.InExerciseBreak = true;
    // The first tick, a second from now, finds SecondsLeft below 0 and shows the first exercise.
    tSeconds_.setEnabled(true);
}

void ExerciseSequencer::tick() {
    SecondsLeft = checked::sub(SecondsLeft, std::int32_t{1});
    if (SecondsLeft < 0)
        LoadNextExercise();
    else if (ExerciseIndex > lastExercise())
        endBreak(); // the scheme changed under the break and has no exercise at this place
    else
        UpdateExerciseCaption();
}

void ExerciseSequencer::LoadNextExercise() {
    ExercisesPlayed = checked::add(ExercisesPlayed, std::int32_t{1});
    if (ExercisesPlayed > ExercisesPerBreak) {
        endBreak();
        return;
    }
    view_.CloseVideo();
    const std::int32_t count = ctx_.exercises.ExerciseCount;
    if (SequencePhase == 1) {
        if (ctx_.record.xStart == 0) {
            ExerciseIndex = 0;
        } else {
            ctx_.random.Randomize();
            ExerciseIndex = vb::toLong(static_cast<double>(ctx_.random.Rnd()) * count);
        }
        SequencePhase = 2;
    }
    if (SequencePhase == 2) {
        if (ExerciseIndex > count)
            ExerciseIndex = 0;
        // The scheme may have changed under a running break (the tray's scheme list): with nothing
        // left to show, the break ends.
        if (!moveToIncluded(+1)) {
            endBreak();
            return;
        }
    } else if (SequencePhase == 0) {
        SequencePhase = 1; // the title entry, at index 0 since start-up
    }
    SecondsLeft = exerciseOnScreen().Seconds;
    UpdateExerciseCaption();
    show(true);
}

void ExerciseSequencer::LoadPrevExercise() {
    view_.CloseVideo();
    ExercisesPlayed = checked::sub(ExercisesPlayed, std::int32_t{1});
    if (!moveToIncluded(-1)) {
        endBreak();
        return;
    }
    SecondsLeft = exerciseOnScreen().Seconds;
    UpdateExerciseCaption();
    show(false); // the player is on top already
}

void ExerciseSequencer::UpdateExerciseCaption() {
    // Both at once: a caption is shown as written, even with a "%1" of its own.
    view_.setPlayerCaption(
        QStringLiteral("%1 (%2)").arg(exerciseOnScreen().Caption, QString::number(SecondsLeft)));
}

std::int32_t ExerciseSequencer::lastExercise() const {
    const ExerciseTable& table = ctx_.exercises;
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(table.ExerciseCount, std::ssize(table.Exercises) - 1));
}

const ExerciseRecord& ExerciseSequencer::exerciseOnScreen() const {
    const std::vector<ExerciseRecord>& exercises = ctx_.exercises.Exercises;
    if (ExerciseIndex < 0 || ExerciseIndex >= std::ssize(exercises))
        throw RuntimeError(vberr::SubscriptOutOfRange, {}, QStringLiteral("ExerciseSequencer"));
    return exercises[static_cast<size_t>(ExerciseIndex)];
}

bool ExerciseSequencer::moveToIncluded(int step) {
    const ExerciseTable& table = ctx_.exercises;
    const std::int32_t count = lastExercise();
    for (std::int32_t tried = 0; tried < count; ++tried) {
        ExerciseIndex = checked::add(ExerciseIndex, static_cast<std::int32_t>(step));
        if (ExerciseIndex > count)
            ExerciseIndex = 1;
        else if (ExerciseIndex < 1)
            ExerciseIndex = count;
        if (table.Exercises[static_cast<size_t>(ExerciseIndex)].Include != 0)
            return true;
    }
    return false;
}

void ExerciseSequencer::show(bool topmost) {
    ++exercisesShown_;
    view_.showExercise(exerciseOnScreen().File, topmost);
}

void ExerciseSequencer::endBreak() {
    // However this break ended, the next one's first tick finds no time left and shows its first
    // exercise.
    SecondsLeft = std::min(SecondsLeft, std::int32_t{-1});
    view_.CloseVideo();
    ExercisesPerBreak = ctx_.settings.readNumber(option("NumAtaTime"));
    ctx_.schedule.InExerciseBreak = false;
    history_.record(HistoryKind::ExerciseBreak, breakStarted_, quit_ ? outcome::Quit : outcome::Completed,
                    QStringLiteral("%1 of %2 exercises, from the %3")
                        .arg(exercisesShown_)
                        .arg(exercisesPlanned_)
                        .arg(breakOrigin_));
    view_.dismissPlayer();
    scheduler_.SetTimers();
}

void ExerciseSequencer::exerciseNowFromTray() {
    ctx_.schedule.MinutesToExercise = 0;
    if (ctx_.record.AudibleX)
        warnings_.AudibleWarningX();
    startNow(origin::Menu);
}

void ExerciseSequencer::exerciseNowFromPrompt() {
    ctx_.schedule.MinutesToExercise = 0;
    promptAnswer_ = outcome::ExerciseNow;
    startNow(origin::Prompt);
}

void ExerciseSequencer::startNow(QLatin1String origin) {
    breakOrigin_ = origin;
    mainView_.showExerciseStatus(QStringLiteral("Next Exercise Break: In Progress"));
    ExercisesPerBreak = ctx_.settings.readNumber(option("NumAtaTime"));
    ExerciseBreak();
}

QString ExerciseSequencer::promptLoaded() {
    const QString minutes = ctx_.settings.readText(option("ProcrastinateM"));
    ctx_.schedule.MinutesToExercise = vb::toLong(minutes);
    promptShown_ = history_.now();
    promptAnswer_ = outcome::Closed;
    return minutes;
}

void ExerciseSequencer::later(const QString& typedMinutes) {
    const Option& postponement = option("ProcrastinateM");
    std::int32_t minutes = postponement.numberDefault;
    try {
        minutes = vb::toLong(typedMinutes);
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): anything but a number is the default
    }
    minutes = std::min(minutes, postponement.clamp->max);
    ctx_.settings.writeNumber(postponement, minutes);
    ctx_.schedule.MinutesToExercise = minutes;
    promptAnswer_ = outcome::Later;
    postponedSeconds_ = std::int64_t{minutes} * 60;
    postponement_ = QStringLiteral("%1 minutes").arg(minutes);
}

void ExerciseSequencer::promptUnloaded() {
    ctx_.schedule.ExercisePromptPending = false;
    if (!promptShown_.isSet())
        return;
    const bool later = promptAnswer_ == outcome::Later;
    history_.record(HistoryKind::ExercisePrompt, promptShown_.local, promptAnswer_,
                    later ? postponedSeconds_ : 0, later ? postponement_ : QString());
    promptShown_ = {};
}

void ExerciseSequencer::amx_Click() {
    SecondsLeft = 0;
}

void ExerciseSequencer::amx_DblClick() {
    quit_ = true;
    ExercisesPlayed = ExercisesPerBreak;
    view_.CloseVideo();
    amx_Click();
}

void ExerciseSequencer::amx_KeyPressEsc() {
    ExerciseIndex = ctx_.exercises.ExerciseCount;
    amx_Click();
}

void ExerciseSequencer::togglePause() {
    tSeconds_.setEnabled(!tSeconds_.isEnabled());
}

void ExerciseSequencer::askToQuit() {
    tSeconds_.setEnabled(false);
    const MessageBox::Answer answer = ctx_.messages.show(
        QStringLiteral("Are you sure you want to quit the exercise break?"),
        QStringLiteral("Tarvo Exercise Break"), MessageBox::Buttons::YesNo, MessageBox::Icon::Question);
    // Always running again afterwards, also when the countdown had been paused before the question.
    tSeconds_.setEnabled(true);
    if (answer == MessageBox::Answer::Yes)
        amx_DblClick();
}

} // namespace tarvo
