// The break engine on simulated time with fakes only: which countdown moves and what is due when, a
// micropause from its start to its end, Esc, Apply and a sleeping machine (overflowing counters are
// the checked arithmetic's test); and
// the exercise breaks: the sequence through a scheme across breaks, left-out exercises, previous, the
// random start, and schemes with nothing to show or changed under a break. (The prompt's choices: the
// forms' test.)
#include "core/RuntimeError.h"
#include "engine/EngineRig.h"
#include "engine/SchemeStore.h"

#include <QtTest>

using namespace tarvo;

namespace {

// Exercises a (2 s), x (left out), b (3 s), c and d (2 s each): four included, six per break.
void loadScheme(EngineRig& rig) {
    ExerciseTable& t = rig.ctx.exercises;
    t.Exercises.assign(106, ExerciseRecord{});
    t.Exercises[0] = titleExercise();
    t.Exercises[1] = {"a.avi", "Arms", 1, 2};
    t.Exercises[2] = {"x.avi", "Left out", 0, 2};
    t.Exercises[3] = {"b.bmp", "Back", 1, 3};
    t.Exercises[4] = {"c.avi", "Chin", 1, 2};
    t.Exercises[5] = {"d.avi", "Desk", 1, 2};
    t.ExerciseCount = 5;
    rig.engine.scheduler().SetTimers();
}

// Runs until the break is over (at most ten minutes); the exercises shown, with the second each came up.
QString wholeBreak(EngineRig& rig) {
    rig.shows.clear();
    for (int s = 0; s < 600 && (s == 0 || rig.state.InExerciseBreak); ++s)
        rig.timeline.advance(1000);
    return rig.shows.join(' ');
}

} // namespace

class TestBreakEngine : public QObject {
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
            {"EveryM 0", 0, 2, 1, 1, 0, 600, "| -600"},
            {"idle", 1, 3, 1, 1, -1, 60, "1 X, 1 prompt | 0"},
            {"idle, no IntelliReset", 1, 2, 1, 0, -1, 5,
             "1 X, 1 prompt, 2 pre, 3 micropause, 4 pre, 5 micropause | 0"},
        };
        for (const auto& c : cases) {
            EngineRig rig;
            std::tie(rig.settings.EveryM, rig.settings.InterruptEvery, rig.settings.AudiblePre,
                     rig.settings.IntelliReset) =
                std::tuple(c.everyM, c.interruptEvery, c.audiblePre, c.intelliReset);
            rig.engine.scheduler().SetTimers();
            rig.run(c.minutes, c.channel);
            // The calls, then the exercise countdown, which stands still while the prompt is up.
            const QString got = rig.entries({"X", "prompt", "pre", "micropause"}) +
                                QStringLiteral(" | %1").arg(rig.state.MinutesToExercise);
            QCOMPARE(QLatin1String(c.name) + ": " + got.trimmed(), QLatin1String(c.name) + ": " + c.calls);
        }
    }

    void statusTextsAndTheNaturalPauseCheck() {
        EngineRig rig;
        rig.settings.EveryM = 60;
        rig.engine.scheduler().SetTimers();
        rig.monitor.setDescription("Natural pauses are not detected here: a test."); // the source was lost
        rig.run(2, -1);
        QCOMPARE(rig.exerciseText, "Next Exercise Break: 57 minutes");
        QCOMPARE(rig.sourceText, "Natural pauses are not detected here: a test.");
        QCOMPARE(rig.voluntaryWrites, 8);
        rig.settings.IntelliReset = 0; // the text is written all the same
        rig.run(1, -1);
        QCOMPARE(rig.voluntaryWrites, 12);
        rig.run(1, 1);
        QCOMPARE(rig.voluntaryWrites, 12);

        // A stamp that went down (the tick count wrapped) is no activity, and the next check compares
        // against it.
        rig.state.LastActivityTimes = {2147483000, 7000};
        rig.monitor.setStamp(0, -2147483000);
        rig.monitor.setStamp(1, 7000);
        static_cast<ManualTimer&>(rig.engine.tSeconds()).fire();
        rig.monitor.setStamp(0, -2147482000);
        static_cast<ManualTimer&>(rig.engine.tSeconds()).fire();
        QCOMPARE(rig.voluntaryWrites, 13);
    }

    // The timers do not tick while the machine sleeps; the first tick after resume asks the clock.
    void aSleepingMachineIsAPause() {
        EngineRig rig;
        rig.settings.EveryM = 50;
        rig.engine.scheduler().SetTimers();
        rig.run(10, 0);
        auto wake = [&](std::int64_t sleptMs, Timer& firstTick) {
            rig.clock.suspend(sleptMs);
            rig.monitor.input(0, rig.clock.tickCount()); // the key that woke the machine
            static_cast<ManualTimer&>(firstTick).fire();
        };
        const int writes = rig.voluntaryWrites;
        wake(14999, rig.engine.tSeconds()); // shorter than a micropause
        QCOMPARE(rig.voluntaryWrites, writes);

        rig.state.ExercisePromptPending = true; // the prompt and its micropause countdown stay
        rig.state.MinutesToMicropause = 2;
        wake(60 * 60000, rig.engine.tSeconds());
        QCOMPARE(rig.voluntaryText, "Last natural micropause: 10:10");
        QCOMPARE(rig.state.MinutesToMicropause, 4);
        QCOMPARE(rig.state.MinutesToExercise, 40);

        rig.state.ExercisePromptPending = false;
        wake(49 * 60000, rig.engine.tMinutes()); // shorter than the exercise interval
        QCOMPARE(rig.state.MinutesToExercise, 39);
        wake(50 * 60000, rig.engine.tMinutes());
        QCOMPARE(rig.state.MinutesToExercise, 50);
        QCOMPARE(rig.exerciseText, "Next Exercise Break: 49 minutes");

        rig.state.InMicropause = true; // a break on screen runs its own course
        rig.state.MinutesToExercise = 7;
        wake(60 * 60000, rig.engine.tMinutes());
        QCOMPARE(rig.state.MinutesToExercise, 6); // an ordinary minute, no fresh start
    }

    // A micropause from its start to its end. Esc in the engine itself is the break screen's test. A
    // second start during a break starts the bar again from 1; with Esc disabled Esc does nothing, but
    // the options dialog still cuts a break short that is more than 3 steps from its end.
    void aMicropause() {
        for (const std::int32_t seconds : {1, 15}) {
            EngineRig rig;
            rig.settings.InterruptFor = seconds;
            rig.engine.scheduler().SetTimers();
            rig.state.MinutesToMicropause = 0;
            rig.clock.setLocalNow(QDateTime(QDate(2026, 11, 23), QTime(14, 30)));
            MicropauseBreak& micropause = rig.engine.micropause();
            micropause.TarvoMicropause();
            QCOMPARE(rig.state.MinutesToMicropause, 4); // the next one is counted from now
            QCOMPARE(rig.log, (QStringList{"0 micropause esc=1", "0 warning", "0 present blank=1"}));

            QCOMPARE(rig.ticksUntilOver(), 10 * seconds - 1); // one tick short of the full length
            QCOMPARE(rig.log.mid(3), (QStringList{"0 dismiss", "0 notification"}));
            QCOMPARE(rig.lastText, "Last tarvo micropause: 14:30");
            QCOMPARE(rig.engine.tSeconds().interval(), seconds * 1000); // back to the natural-pause check
            QVERIFY(rig.engine.tSeconds().isEnabled() && rig.engine.tMinutes().isEnabled());
            if (seconds == 1)
                continue;

            micropause.TarvoMicropause();
            rig.timeline.advance(1500);
            micropause.TarvoMicropause();
            QCOMPARE(rig.ticksUntilOver(), 149);
            rig.settings.DisableEsc = 1;
            micropause.TarvoMicropause();
            micropause.cmdCancel_Click();
            QCOMPARE(rig.bar.value, 1);
            micropause.cutShort();
            QCOMPARE(rig.ticksUntilOver(), 1);
            micropause.TarvoMicropause();
            rig.bar.value = 147;
            micropause.cutShort();
            QCOMPARE(rig.ticksUntilOver(), 3);
        }
    }

    void applyAdjustsTheRunningSchedule() {
        // {interval in effect, minutes left, new interval, expected; exercise left, new EveryM, expected}
        // (a plain shift of both: the options dialog's test)
        const int cases[][7] = {{10, 3, 4, 2, 40, 30, 30}, {10, 1, 2, 2, -5, 0, -5}};
        for (const auto& c : cases) {
            EngineRig rig;
            rig.settings.InterruptEvery = c[0];
            rig.engine.scheduler().SetTimers();
            rig.timeline.advance(10000);
            rig.state.MinutesToMicropause = c[1];
            rig.state.MinutesToExercise = c[4];
            rig.settings.InterruptFor = 20;
            rig.settings.InterruptEvery = c[2];
            rig.settings.EveryM = c[5];
            rig.engine.scheduler().ApplyMicropauseOptions();
            rig.engine.scheduler().ApplyExerciseOptions();
            QCOMPARE(rig.state.MinutesToMicropause, c[3]);
            QCOMPARE(rig.state.MinutesToExercise, c[6]);
            auto& tSeconds = static_cast<ManualTimer&>(rig.engine.tSeconds());
            QVERIFY(tSeconds.isRunning() && tSeconds.dueAt() == 30000); // a fresh check interval
            QCOMPARE(static_cast<ManualTimer&>(rig.engine.tMinutes()).dueAt(), 60000); // keeps its pace
        }
    }

private slots:
    // Six per break over four included exercises: the title, 1–4 and 1, each for its seconds plus one
    // (the captions count down: the forms' test); the next break goes on with the second. The timers
    // stop for the break and are re-armed after it, with the number per break read afresh.
    void theSequenceCarriesOverFromBreakToBreak() {
        EngineRig rig;
        loadScheme(rig);
        rig.exercise.exerciseNowFromTray();
        QCOMPARE(rig.exerciseText, "Next Exercise Break: In Progress");
        QVERIFY(rig.log.contains("0 X") && rig.log.contains("0 player"));
        QVERIFY(rig.state.InExerciseBreak && !rig.engine.tMinutes().isEnabled());
        rig.store.model().setValue("Exercise", "NumAtaTime", "2"); // for the breaks after this one
        QCOMPARE(wholeBreak(rig), "title.avi@1 a.avi@12 b.bmp@15 c.avi@19 d.avi@22 a.avi@25");
        QCOMPARE(rig.state.MinutesToExercise, 50);
        QCOMPARE(rig.exercise.ExercisesPerBreak, 2);

        rig.store.model().setValue("Exercise", "NumAtaTime", "6");
        rig.exercise.exerciseNowFromPrompt();
        QCOMPARE(wholeBreak(rig), "b.bmp@29 c.avi@33 d.avi@36 a.avi@39 b.bmp@42 c.avi@46");
        QVERIFY(!rig.log.contains("1 X")); // the prompt's start has no warning of its own
    }

    // Previous on the first exercise of a break makes the played count 0, so that the break shows one
    // exercise more. Going back passes left-out exercises and never reaches the title.
    void previousLeftOutAndARandomStart() {
        EngineRig rig;
        loadScheme(rig);
        rig.exercise.ExercisesPerBreak = 6;
        rig.exercise.SequencePhase = 2; // past the title, at the first exercise
        rig.exercise.ExerciseIndex = 1;
        rig.exercise.ExerciseBreak();
        rig.timeline.advance(1000);
        rig.exercise.LoadPrevExercise();
        QCOMPARE(rig.shows.join(' '), "b.bmp@1 a.avi@1 again");
        QCOMPARE(wholeBreak(rig), "b.bmp@4 c.avi@8 d.avi@11 a.avi@14 b.bmp@17 c.avi@21");

        rig.shows.clear();
        rig.exercise.ExerciseBreak();
        rig.timeline.advance(1000);
        for (int i = 0; i < 4; ++i)
            rig.exercise.LoadPrevExercise();
        QCOMPARE(rig.shows.join(' '), "d.avi@25 c.avi@25 again b.bmp@25 again a.avi@25 again d.avi@25 again");

        // With "xStart" the first exercise of a run is drawn at random; a draw of the last index wraps to
        // the first included exercise.
        EngineRig run;
        loadScheme(run);
        run.settings.xStart = -1;
        run.random.next(0.95f); // 0.95 × 5 rounds to 5
        run.exercise.ExercisesPerBreak = 2;
        run.exercise.ExerciseBreak();
        QCOMPARE(wholeBreak(run), "title.avi@1 a.avi@12");
        QCOMPARE(run.random.seeded(), 1);
    }

    // A running break whose scheme is swapped for one with nothing to show ends at the next exercise;
    // a break of such a scheme does not start: the schedule is re-armed and nothing is shown.
    void nothingToShow() {
        EngineRig rig;
        loadScheme(rig);
        rig.exercise.exerciseNowFromTray();
        rig.timeline.advance(2000);
        for (ExerciseRecord& e : rig.ctx.exercises.Exercises)
            e.Include = 0; // as the tray's scheme list chose a scheme of left-out exercises
        rig.exercise.amx_Click();
        rig.timeline.advance(1000);
        QVERIFY(!rig.state.InExerciseBreak && rig.log.contains("0 player gone"));
        rig.state.MinutesToExercise = 3;
        rig.exercise.exerciseNowFromTray();
        QCOMPARE(rig.state.MinutesToExercise, 50);
        QVERIFY(!rig.state.InExerciseBreak && rig.shows.size() == 1 && rig.log.count("0 player") == 1);

        // The last of 120 exercises is up when the tray swaps the scheme for an empty one: the new table
        // has no such place, and the next tick ends the break; the break after it runs as usual.
        ExerciseTable& t = rig.ctx.exercises;
        t.Exercises.assign(221, ExerciseRecord{});
        for (int i = 1; i <= 120; ++i)
            t.Exercises[static_cast<size_t>(i)] = {"e.avi", QString::number(i), 1, 5};
        t.ExerciseCount = 120;
        rig.exercise.exerciseNowFromTray();
        rig.timeline.advance(1000);
        rig.exercise.LoadPrevExercise();
        LoadScheme(rig.ctx.settings, t, "Empty");
        rig.timeline.advance(1000);
        QVERIFY(!rig.state.InExerciseBreak);
        loadScheme(rig);
        rig.exercise.exerciseNowFromTray();
        rig.timeline.advance(1000);
        QVERIFY(rig.state.InExerciseBreak && rig.shows.last().startsWith("a.avi"));
    }
};

QTEST_GUILESS_MAIN(TestBreakEngine)
#include "tst_breakengine.moc"
