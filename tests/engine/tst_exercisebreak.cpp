// The exercise breaks through the engine with fakes only: the sequence through a scheme across breaks,
// left-out exercises, previous, the random start, the player's gestures, the prompt's choices, and
// schemes with nothing to show.
#include "engine/EngineRig.h"

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

class TestExerciseBreak : public QObject {
    Q_OBJECT

private slots:
    // Six per break over four included exercises: the title, 1–4 and 1, each for its seconds plus one;
    // the next break goes on with the second. The timers stop for the break and are re-armed after it,
    // with the number per break read afresh.
    void theSequenceCarriesOverFromBreakToBreak() {
        EngineRig rig;
        loadScheme(rig);
        rig.exercise.exerciseNowFromTray();
        QCOMPARE(rig.exerciseText, "Next Exercise Break: In Progress");
        QVERIFY(rig.log.contains("0 X") && rig.log.contains("0 player"));
        QVERIFY(rig.state.InExerciseBreak && !rig.engine.tMinutes().isEnabled());
        QCOMPARE(rig.engine.tSeconds().interval(), 1000);
        rig.timeline.advance(1000);
        QCOMPARE(rig.caption, "Gently now... (10)");
        rig.timeline.advance(1000);
        QCOMPARE(rig.caption, "Gently now... (9)");
        rig.store.model().setValue("Exercise", "NumAtaTime", "2");
        const QString opening = rig.shows.join(' ');
        QCOMPARE(opening + ' ' + wholeBreak(rig), "title.avi@1 a.avi@12 b.bmp@15 c.avi@19 d.avi@22 a.avi@25");
        QCOMPARE(rig.log.last(), "0 player gone");
        QVERIFY(rig.engine.tMinutes().isEnabled() && rig.engine.tSeconds().interval() == 15000);
        QCOMPARE(rig.state.MinutesToExercise, 50);
        QCOMPARE(rig.exercise.ExercisesPerBreak, 2);

        rig.store.model().setValue("Exercise", "NumAtaTime", "6");
        rig.exercise.exerciseNowFromPrompt();
        QCOMPARE(wholeBreak(rig), "b.bmp@29 c.avi@33 d.avi@36 a.avi@39 b.bmp@42 c.avi@46");
        QVERIFY(!rig.log.contains("1 X")); // the prompt's start has no warning of its own
    }

    // Previous on the first exercise of a break makes the played count 0, so that the break shows one
    // exercise more. Going back passes left-out exercises and never reaches the title.
    void previousAndLeftOutExercises() {
        EngineRig rig;
        loadScheme(rig);
        rig.exercise.ExercisesPerBreak = 6;
        rig.exercise.ExerciseBreak();
        wholeBreak(rig); // the title, a, b, c, d, a
        rig.shows.clear();
        rig.exercise.ExerciseBreak();
        rig.timeline.advance(1000);
        rig.exercise.LoadPrevExercise();
        QCOMPARE(rig.exercise.ExercisesPlayed, 0);
        QCOMPARE(rig.shows.join(' '), "b.bmp@29 a.avi@29 again");
        QCOMPARE(wholeBreak(rig), "b.bmp@32 c.avi@36 d.avi@39 a.avi@42 b.bmp@45 c.avi@49");

        rig.shows.clear();
        rig.exercise.ExerciseBreak();
        rig.timeline.advance(1000);
        for (int i = 0; i < 4; ++i)
            rig.exercise.LoadPrevExercise();
        QCOMPARE(rig.shows.join(' '), "d.avi@53 c.avi@53 again b.bmp@53 again a.avi@53 again d.avi@53 again");
    }

    // With "xStart" the first exercise of the run is drawn at random; a draw of the last index wraps to
    // the first included exercise.
    void aRandomStartWraps() {
        EngineRig rig;
        loadScheme(rig);
        rig.settings.xStart = -1;
        rig.random.next(0.95f); // 0.95 × 5 rounds to 5
        rig.exercise.ExercisesPerBreak = 2;
        rig.exercise.ExerciseBreak();
        QCOMPARE(wholeBreak(rig), "title.avi@1 a.avi@12");
        QCOMPARE(rig.random.seeded(), 1);
    }

    // A click skips to the next exercise on the next tick, a double click ends the break there, Esc on
    // the media jumps to the last exercise so that the next tick wraps to the first; pause stops the
    // countdown, and the quit question always leaves it running: No goes on, Yes ends the break.
    void thePlayersGestures() {
        EngineRig rig;
        loadScheme(rig);
        rig.exercise.ExercisesPerBreak = 9;
        rig.exercise.ExerciseBreak();
        rig.timeline.advance(2000); // the title
        rig.exercise.amx_Click();
        rig.timeline.advance(1000);
        QCOMPARE(rig.shows.last(), "a.avi@3");
        rig.exercise.amx_KeyPressEsc();
        rig.timeline.advance(1000);
        QCOMPARE(rig.shows.last(), "a.avi@4");

        rig.exercise.togglePause();
        rig.timeline.advance(10000);
        QCOMPARE(rig.caption, "Arms (2)");
        rig.messages.answerNext(MessageBox::Answer::No);
        rig.exercise.askToQuit();
        QCOMPARE(rig.messages.shown().back().text, "Are you sure you want to quit the exercise break?");
        QCOMPARE(rig.messages.shown().back().title, "Tarvo Exercise Break");
        QVERIFY(rig.engine.tSeconds().isEnabled() && rig.state.InExerciseBreak);
        rig.timeline.advance(1000);
        QCOMPARE(rig.caption, "Arms (1)");

        rig.messages.answerNext(MessageBox::Answer::Yes);
        const int closes = rig.videoCloses;
        rig.exercise.askToQuit();
        QVERIFY(rig.videoCloses > closes); // the video goes at once
        rig.timeline.advance(1000);
        QVERIFY(!rig.state.InExerciseBreak && rig.engine.tMinutes().isEnabled());
    }

    // The prompt: due when the exercise minutes run out; loading it sets the minutes to the last
    // postponement; Later takes what was typed (5 for anything but a number, at most 120, no lower
    // limit) and saves it; unloading it lets the exercise countdown run again.
    void thePromptPutsTheBreakOff() {
        EngineRig rig;
        rig.settings.EveryM = 1;
        rig.engine.scheduler().SetTimers();
        rig.run(1, 0);
        QVERIFY(rig.log.contains("1 prompt") && rig.state.ExercisePromptPending);
        rig.store.model().setValue("Exercise", "ProcrastinateM", "7");
        QCOMPARE(rig.exercise.promptLoaded(), "7");
        QCOMPARE(rig.state.MinutesToExercise, 7);
        for (const auto& [typed, minutes] : {std::pair{"abc", 5}, std::pair{"-3", -3}, std::pair{"0", 0},
                                             std::pair{"999", 120}, std::pair{" 12 ", 12}}) {
            rig.exercise.later(QLatin1String(typed));
            QCOMPARE(rig.state.MinutesToExercise, minutes);
            QCOMPARE(rig.store.model().value("Exercise", "ProcrastinateM"),
                     std::optional(QString::number(minutes)));
        }
        rig.exercise.promptUnloaded();
        QVERIFY(!rig.state.ExercisePromptPending);
        rig.run(12, 0);
        QCOMPARE(rig.log.filter("prompt").size(), 2); // again once the 12 minutes have run out
    }

    // A scheme with nothing to show (all left out, or empty, also after a running break's scheme was
    // swapped for one) has no break: the schedule is re-armed and nothing is shown.
    void nothingToShow() {
        EngineRig rig;
        loadScheme(rig);
        for (ExerciseRecord& e : rig.ctx.exercises.Exercises)
            e.Include = 0;
        rig.state.MinutesToExercise = 3;
        rig.exercise.exerciseNowFromTray();
        QCOMPARE(rig.state.MinutesToExercise, 50);
        QVERIFY(!rig.state.InExerciseBreak && rig.shows.isEmpty() && !rig.log.contains("0 player"));

        loadScheme(rig);
        rig.exercise.exerciseNowFromTray();
        rig.timeline.advance(2000);
        rig.ctx.exercises.ExerciseCount = 0; // the tray's scheme list chose an empty scheme
        rig.exercise.amx_Click();
        rig.timeline.advance(1000);
        QVERIFY(!rig.state.InExerciseBreak && rig.log.contains("0 player gone"));
    }
};

QTEST_GUILESS_MAIN(TestExerciseBreak)
#include "tst_exercisebreak.moc"
