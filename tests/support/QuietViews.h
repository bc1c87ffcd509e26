#pragma once

#include "engine/CountdownBar.h"
#include "engine/ExerciseView.h"
#include "engine/MainView.h"
#include "engine/Warnings.h"

// The engine's views that a test of one of the others leaves unseen: the main form with a countdown bar
// that keeps its position, the speakers and the exercise screens.
struct QuietViews : tarvo::MainView, tarvo::ExerciseView, tarvo::Warnings, tarvo::CountdownBar {
    std::int32_t value = 0, max = 100;
    tarvo::CountdownBar& countdownBar() override { return *this; }
    std::int32_t Value() const override { return value; }
    void setValue(std::int32_t v) override { value = v; }
    std::int32_t Max() const override { return max; }
    void setMax(std::int32_t v) override { max = v; }
    void prepareBreak(bool) override {}
    void presentBreak(bool) override {}
    void dismissBreak() override {}
    void showLastMicropause(const QString&) override {}
    void showExerciseStatus(const QString&) override {}
    void showVoluntaryStatus(const QString&) override {}
    void showActivitySource(const QString&) override {}
    void showPresenceStatus(const QString&) override {}
    void AudibleWarningPre() override {}
    void AudibleWarning() override {}
    void AudibleWarningX() override {}
    void AudibleNotification() override {}
    void showExercisePrompt() override {}
    void preparePlayer() override {}
    void setPlayerCaption(const QString&) override {}
    void CloseVideo() override {}
    void showExercise(const QString&, bool) override {}
    void dismissPlayer() override {}
};
