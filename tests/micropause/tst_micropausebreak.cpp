// The micropause as a sequence of steps on simulated time: how long it lasts, what Esc does, and
// what is shown, heard and re-armed in which order.
#include "core/RuntimeError.h"
#include "micropause/BreakView.h"
#include "micropause/CProgressBar.h"
#include "micropause/MicropauseBreak.h"
#include "micropause/Scheduler.h"
#include "micropause/SchedulerPort.h"
#include "micropause/SchedulerState.h"
#include "micropause/Warnings.h"
#include "platform/fake/FakeActivityMonitor.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/ManualTimer.h"
#include "settings/SettingsRecord.h"

#include <QtTest>

using namespace tarvo;

namespace {

// Records the view's and the warnings' steps in one log, so their order shows.
struct Recorder : BreakView, Warnings, SchedulerPort {
    QStringList log;
    void prepareBreak(bool esc) override { log << QStringLiteral("prepare esc=%1").arg(esc); }
    void presentBreak(bool blank) override { log << QStringLiteral("present blank=%1").arg(blank); }
    void dismissBreak() override { log << "dismiss"; }
    void showLastMicropause(const QString& t) override { log << t; }
    void AudibleWarningPre() override { log << "pre-warning"; }
    void AudibleWarning() override { log << "warning"; }
    void AudibleWarningX() override { log << "exercise warning"; }
    void AudibleNotification() override { log << "notification"; }
    // The scheduler's port hands break ticks to the break under test.
    MicropauseBreak* brk = nullptr;
    void TarvoMicropause() override { brk->TarvoMicropause(); }
    void breakTick() override { brk->breakTick(); }
    void showExercisePrompt() override {}
    void exerciseTick() override {}
    void showExerciseStatus(const QString&) override {}
    void showVoluntaryStatus(const QString&) override {}
};

struct Rig {
    SettingsRecord settings;
    SchedulerState state;
    FakeClock clock{0, QDateTime(QDate(2026, 11, 22), QTime(14, 30))};
    ManualTimeline timeline{&clock};
    FakeActivityMonitor monitor;
    std::unique_ptr<Timer> tMinutes = timeline.createTimer();
    std::unique_ptr<Timer> tSeconds = timeline.createTimer();
    Recorder rec;
    Scheduler scheduler{settings, state, clock, monitor, *tMinutes, *tSeconds, rec};
    CProgressBar bar;
    MicropauseBreak brk{settings, state, scheduler, *tSeconds, bar, rec, rec, clock};

    explicit Rig(std::int32_t interruptFor) {
        settings.InterruptFor = interruptFor;
        rec.brk = &brk;
        tMinutes->setHandler([this] { scheduler.tMinutes_Timer(); });
        tSeconds->setHandler([this] { scheduler.tSeconds_Timer(); });
        scheduler.SetTimers();
    }
    // Advances in 100 ms steps until the break is over; returns the ticks it took.
    int ticksUntilOver() {
        int ticks = 0;
        while (state.InMicropause && ticks < 100000) {
            timeline.advance(100);
            ++ticks;
        }
        return ticks;
    }
};

} // namespace

class TestMicropauseBreak : public QObject {
    Q_OBJECT

private slots:
    void aBreakFromStartToEnd() {
        for (const std::int32_t seconds : {1, 15}) {
            Rig rig(seconds);
            rig.state.MicropauseReload = 4;
            rig.state.MinutesToMicropause = 0;
            rig.brk.TarvoMicropause();
            QCOMPARE(rig.state.MinutesToMicropause, 4);
            QVERIFY(rig.state.InMicropause);
            QCOMPARE(rig.bar.Max(), seconds * 10);
            QCOMPARE(rig.bar.Value(), 1);
            QCOMPARE(rig.tSeconds->interval(), 100);
            QCOMPARE(rig.rec.log, (QStringList{"prepare esc=1", "warning", "present blank=1"}));

            QCOMPARE(rig.ticksUntilOver(), 10 * seconds - 1); // one tick short of the full length
            QCOMPARE(rig.rec.log.mid(3),
                     (QStringList{"dismiss", "Last tarvo micropause: 14:30", "notification"}));
            QCOMPARE(rig.tSeconds->interval(), seconds * 1000); // back to the natural-pause check
            QVERIFY(rig.tSeconds->isEnabled());
        }
    }

    void escapeEndsTheBreakUnlessDisabled() {
        Rig rig(15);
        rig.settings.Audible = 0;
        rig.settings.Blank = 0;
        rig.brk.TarvoMicropause();
        QCOMPARE(rig.rec.log, (QStringList{"prepare esc=1", "present blank=0"}));
        rig.timeline.advance(300);
        rig.brk.cmdCancel_Click();
        QCOMPARE(rig.ticksUntilOver(), 1); // the next tick ends it the ordinary way
        QVERIFY(rig.rec.log.contains("Last tarvo micropause: 14:30"));

        // Esc in the last tick sets the bar back one step: the break ends one tick later.
        rig.brk.TarvoMicropause();
        rig.timeline.advance(100 * 148);
        QCOMPARE(rig.bar.Value(), 149);
        rig.brk.cmdCancel_Click();
        QCOMPARE(rig.bar.Value(), 149);
        QCOMPARE(rig.ticksUntilOver(), 1);

        // With Esc disabled (by either switch, merged at load) the hint stays hidden and Esc does nothing.
        rig.settings.DisableEsc = 1;
        rig.rec.log.clear();
        rig.brk.TarvoMicropause();
        QCOMPARE(rig.rec.log.first(), "prepare esc=0");
        rig.brk.cmdCancel_Click();
        QCOMPARE(rig.bar.Value(), 1);
        QCOMPARE(rig.ticksUntilOver(), 149);
    }

    void aSecondStartRestartsTheBar() {
        Rig rig(2);
        rig.brk.TarvoMicropause();
        rig.timeline.advance(1500);
        QCOMPARE(rig.bar.Value(), 16);
        rig.brk.TarvoMicropause();
        QCOMPARE(rig.bar.Value(), 1);
        QCOMPARE(rig.ticksUntilOver(), 19);
    }

    void theScheduleDrivesTheBreakAndTheMinuteTimerKeepsRunning() {
        Rig rig(3);
        rig.settings.InterruptEvery = 1;
        rig.scheduler.SetTimers();
        rig.state.ExercisePromptPending = true; // the micropause countdown moves only then
        rig.monitor.InstallFilter(1, true);
        rig.monitor.input(1, rig.clock.tickCount() + 1);
        rig.timeline.advance(60000);
        QVERIFY(rig.state.InMicropause);
        QVERIFY(rig.tMinutes->isEnabled());
        QCOMPARE(rig.ticksUntilOver(), 29);
        QVERIFY(!rig.state.InMicropause);
    }

    void aZeroLengthIsTheBarsError() {
        Rig rig(0);
        try {
            rig.brk.TarvoMicropause();
            QFAIL("a break of 0 seconds started");
        } catch (const RuntimeError& e) {
            QCOMPARE(e.number(), vberr::objectError(3));
            QCOMPARE(e.description(), "Max property must be greater than Min.");
        }
        QVERIFY(!rig.state.InMicropause);
        QVERIFY(!rig.tSeconds->isEnabled());
    }
};

QTEST_MAIN(TestMicropauseBreak)
#include "tst_micropausebreak.moc"
