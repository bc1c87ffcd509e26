// The schedule over hours of simulated time: which countdown moves, what is due when, and what a
// natural pause, Apply and an overflowing counter do to it.
#include "micropause/Scheduler.h" // first, to show that it stands on its own

// Test doubles and what the scheduler reads.
#include "core/RuntimeError.h"
#include "micropause/SchedulerPort.h"
#include "platform/fake/FakeActivityMonitor.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/ManualTimer.h"
#include "settings/SettingsRecord.h"

#include <QtTest>

using namespace tarvo;

namespace {

// Start-up as far as the scheduler needs it, with a port that records each handover and its minute.
// Of the break screen it plays the one part the schedule depends on: a micropause reloads the countdown.
struct Rig : SchedulerPort {
    SettingsRecord settings;
    SchedulerState state;
    FakeClock clock;
    ManualTimeline timeline{&clock};
    FakeActivityMonitor monitor;
    ManualTimer tMinutes{&timeline}, tSeconds{&timeline};
    Scheduler scheduler{settings, state, clock, monitor, tMinutes, tSeconds, *this};
    QStringList calls;
    QString exerciseText, voluntaryText;
    int voluntaryWrites = 0;

    Rig() {
        tMinutes.setHandler([this] { scheduler.tMinutes_Timer(); });
        tSeconds.setHandler([this] { scheduler.tSeconds_Timer(); });
        monitor.InstallFilter(0, true);
        monitor.InstallFilter(1, true);
        state.LastActivityTimes = {clock.tickCount(), clock.tickCount()};
    }
    // The user is busy on `channel` every second, or idle for channel -1.
    void run(int minutes, int channel) {
        for (int s = 0; s < minutes * 60; ++s) {
            timeline.advance(1000);
            if (channel >= 0)
                monitor.input(channel, clock.tickCount());
        }
    }

    void note(const char* what) {
        calls << QStringLiteral("%1 %2").arg(timeline.now() / 60000).arg(QLatin1String(what));
    }
    void TarvoMicropause() override {
        note("micropause");
        state.MinutesToMicropause = state.MicropauseReload;
    }
    void breakTick() override { note("break tick"); }
    void AudibleWarningPre() override { note("pre"); }
    void AudibleWarningX() override { note("X"); }
    void showExercisePrompt() override { note("prompt"); }
    void exerciseTick() override { note("exercise tick"); }
    void showExerciseStatus(const QString& text) override { exerciseText = text; }
    void showVoluntaryStatus(const QString& text) override {
        voluntaryText = text;
        ++voluntaryWrites;
    }
};

} // namespace

class TestScheduler : public QObject {
    Q_OBJECT

private slots:
    void schedule() {
        struct {
            const char* name;
            int everyM, interruptEvery, audiblePre, intelliReset, channel, minutes;
            const char* calls; // and the minutes to the exercise prompt left at the end
        } const cases[] = {
            {"every 2", 1, 2, 1, 1, 0, 5, "1 X, 1 prompt, 2 pre, 3 micropause, 4 pre, 5 micropause | 0"},
            {"every 1", 1, 1, 1, 1, 0, 3, "1 X, 1 prompt, 2 micropause, 3 micropause | 0"},
            {"no pre-warning", 1, 2, 0, 1, 0, 5, "1 X, 1 prompt, 3 micropause, 5 micropause | 0"},
            {"mouse only", 3, 2, 1, 1, 1, 6, "3 X, 3 prompt, 4 pre, 5 micropause, 6 pre | 0"},
            {"defaults", 50, 4, 1, 1, 0, 55, "50 X, 50 prompt, 53 pre, 54 micropause | 0"},
            {"EveryM 0", 0, 2, 1, 1, 0, 600, "| -600"},
            {"idle", 1, 3, 1, 1, -1, 60, "1 X, 1 prompt | 0"},
            {"idle, no IntelliReset", 1, 2, 1, 0, -1, 5,
             "1 X, 1 prompt, 2 pre, 3 micropause, 4 pre, 5 micropause | 0"},
        };
        for (const auto& c : cases) {
            Rig rig;
            rig.settings.EveryM = c.everyM;
            rig.settings.InterruptEvery = c.interruptEvery;
            rig.settings.AudiblePre = c.audiblePre;
            rig.settings.IntelliReset = c.intelliReset;
            rig.scheduler.SetTimers();
            rig.run(c.minutes, c.channel);
            const QString name = QLatin1String(c.name) + ": ";
            // The calls, then the exercise countdown, which stands still while the prompt is up.
            const QString got =
                rig.calls.join(", ") + QStringLiteral(" | %1").arg(rig.state.MinutesToExercise);
            QCOMPARE(name + got.trimmed(), name + QLatin1String(c.calls));
        }
    }

    void statusTexts() {
        Rig rig;
        rig.settings.EveryM = 60;
        rig.scheduler.SetTimers();
        QCOMPARE(rig.exerciseText, "Next Exercise Break: 59 minutes");
        rig.run(2, -1);
        QCOMPARE(rig.exerciseText, "Next Exercise Break: 57 minutes");
        QCOMPARE(rig.voluntaryText, "Last natural micropause: 09:02");
        QCOMPARE(rig.voluntaryWrites, 8);
        rig.settings.IntelliReset = 0;
        rig.run(1, -1);
        QCOMPARE(rig.voluntaryWrites, 12);
        rig.run(1, 1);
        QCOMPARE(rig.voluntaryWrites, 12);
    }

    void secondsTick() {
        Rig rig;
        rig.scheduler.SetTimers();
        rig.state.InMicropause = true;
        rig.tSeconds.fire();
        rig.state.InExerciseBreak = true;
        rig.tSeconds.fire();
        QCOMPARE(rig.calls.join(", "), "0 break tick, 0 exercise tick");
        QCOMPARE(rig.voluntaryWrites, 0);

        // A stamp that went down (the tick count wrapped) is no activity, and the next check compares
        // against it.
        rig.state.InMicropause = rig.state.InExerciseBreak = false;
        rig.state.LastActivityTimes = {2147483000, 7000};
        rig.monitor.setStamp(0, -2147483000);
        rig.monitor.setStamp(1, 7000);
        rig.tSeconds.fire();
        rig.monitor.setStamp(0, -2147482000);
        rig.tSeconds.fire();
        QCOMPARE(rig.voluntaryWrites, 1);
    }

    void applyAdjustsTheRunningSchedule() {
        // {interval in effect, minutes left, new interval, expected; exercise left, new EveryM, expected}
        const int cases[][7] = {
            {4, 3, 10, 9, 40, 50, 40}, {10, 3, 4, 2, 40, 30, 30}, {10, 1, 2, 2, -5, 0, -5}};
        for (const auto& c : cases) {
            Rig rig;
            rig.settings.InterruptEvery = c[0];
            rig.scheduler.SetTimers();
            rig.timeline.advance(10000);
            rig.state.MinutesToMicropause = c[1];
            rig.state.MinutesToExercise = c[4];
            rig.settings.InterruptFor = 20;
            rig.settings.InterruptEvery = c[2];
            rig.settings.EveryM = c[5];
            rig.scheduler.ApplyOptions();
            QCOMPARE(rig.state.MinutesToMicropause, c[3]);
            QCOMPARE(rig.state.MicropauseReload, c[2]);
            QCOMPARE(rig.state.MinutesToExercise, c[6]);
            QVERIFY(rig.tSeconds.isRunning() && rig.tSeconds.dueAt() == 30000); // a fresh check interval
            QCOMPARE(rig.tMinutes.dueAt(), 60000);                              // the minute keeps its pace
        }
    }

    void counterOverflowRaises() {
        // The overflow of checked arithmetic, run-time error 6, leaves the handler.
        Rig rig;
        rig.scheduler.SetTimers();
        rig.state.MinutesToExercise = INT32_MIN + 1; // the count fits, the number shown does not
        QVERIFY_THROWS_EXCEPTION(RuntimeError, rig.tMinutes.fire());
        rig.state.ExercisePromptPending = true;
        rig.state.MinutesToMicropause = INT32_MIN;
        QVERIFY_THROWS_EXCEPTION(RuntimeError, rig.tMinutes.fire());
        rig.state.MinutesToMicropause = INT32_MAX;
        rig.settings.InterruptEvery = rig.state.MicropauseReload + 1;
        QVERIFY_THROWS_EXCEPTION(RuntimeError, rig.scheduler.ApplyOptions());
        rig.settings.InterruptFor = 2147484;
        QVERIFY_THROWS_EXCEPTION(RuntimeError, rig.scheduler.SetTimers());
    }
};

QTEST_GUILESS_MAIN(TestScheduler)
#include "tst_scheduler.moc"
