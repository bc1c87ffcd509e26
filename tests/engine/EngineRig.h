#pragma once

#include "engine/BreakEngine.h"
#include "engine/CountdownBar.h"
#include "engine/ExerciseView.h"
#include "engine/MainView.h"
#include "engine/Warnings.h"
#include "support/FakeContext.h"

#include <QStringList>

#include <algorithm>

// A countdown bar as the break uses it: the position kept within 0 … Max.
struct Bar : tarvo::CountdownBar {
    std::int32_t value = 0, max = 100;
    std::int32_t Value() const override { return value; }
    void setValue(std::int32_t v) override { value = std::clamp(v, 0, max); }
    std::int32_t Max() const override { return max; }
    void setMax(std::int32_t v) override { max = v; }
};

// The engine with every seam faked; the screens and the speakers write one log of "<minute> <what>",
// and the player's exercises are noted with the second they came up.
struct EngineRig : FakeContext, tarvo::MainView, tarvo::ExerciseView, tarvo::Warnings {
    tarvo::SettingsRecord& settings = ctx.record;
    tarvo::SchedulerState& state = ctx.schedule;
    Bar bar;
    QStringList log, shows;
    QString exerciseText, voluntaryText, lastText, sourceText, presenceText;
    int voluntaryWrites = 0;
    tarvo::BreakEngine engine{ctx, *this, *this, *this};
    tarvo::ExerciseSequencer& exercise = engine.exercise();

    explicit EngineRig(const MonitorMaker& makeMonitor = {})
        : FakeContext(QStringLiteral("/opt/tarvo"), makeMonitor) {
        ctx.monitor.InstallFilter(0, true);
        ctx.monitor.InstallFilter(1, true);
        state.LastActivityTimes = {clock.tickCount(), clock.tickCount()};
    }
    // The user is busy on `channel` every second, or idle for channel -1.
    void run(int minutes, int channel) { runSeconds(minutes * 60, channel); }
    void runSeconds(int seconds, int channel = 0) {
        for (int s = 0; s < seconds; ++s) {
            timeline.advance(1000);
            if (channel >= 0)
                monitor.input(channel, clock.tickCount());
        }
    }
    // Advances in 100 ms steps until the micropause is over; the ticks it took.
    int ticksUntilOver() {
        int ticks = 0;
        for (; state.InMicropause && ticks < 100000; ++ticks)
            timeline.advance(100);
        return ticks;
    }
    // The log's entries "<minute> <what>" whose first word is one of these, as "<minute> <word>".
    QString entries(const QStringList& words) const {
        QStringList kept;
        for (const QString& e : log)
            if (words.contains(e.section(' ', 1, 1)))
                kept << e.section(' ', 0, 1);
        return kept.join(", ");
    }
    void note(const QString& what) { log << QStringLiteral("%1 %2").arg(timeline.now() / 60000).arg(what); }

    tarvo::CountdownBar& countdownBar() override { return bar; }
    void prepareBreak(bool esc) override { note(QStringLiteral("micropause esc=%1").arg(esc)); }
    void presentBreak(bool blank) override { note(QStringLiteral("present blank=%1").arg(blank)); }
    void dismissBreak() override { note("dismiss"); }
    void showLastMicropause(const QString& t) override { lastText = t; }
    void showExerciseStatus(const QString& t) override { exerciseText = t; }
    void showVoluntaryStatus(const QString& t) override {
        voluntaryText = t;
        ++voluntaryWrites;
    }
    void showActivitySource(const QString& t) override { sourceText = t; }
    void showPresenceStatus(const QString& t) override { presenceText = t; }
    void AudibleWarningPre() override { note("pre"); }
    void AudibleWarning() override { note("warning"); }
    void AudibleWarningX() override { note("X"); }
    void AudibleNotification() override { note("notification"); }

    void showExercisePrompt() override { note("prompt"); }
    void preparePlayer() override { note("player"); }
    void setPlayerCaption(const QString&) override {}
    void CloseVideo() override {}
    void showExercise(const QString& file, bool topmost) override {
        shows << QStringLiteral("%1@%2%3").arg(file).arg(timeline.now() / 1000).arg(topmost ? "" : " again");
    }
    void dismissPlayer() override { note("player gone"); }
};
