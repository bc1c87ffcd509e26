// The break engine on simulated time with fakes only: which countdown moves and what is due when, a
// micropause from its start to its end, Esc, Apply, a whole working day, and overflowing counters.
#include "core/RuntimeError.h"
#include "engine/EngineRig.h"

#include <QtTest>

using namespace tarvo;

namespace {

// The log's entries that start with one of the words.
QString entries(const QStringList& log, const QStringList& words) {
    QStringList kept;
    for (const QString& e : log)
        if (words.contains(e.section(' ', 1, 1)))
            kept << e.section(' ', 0, 1);
    return kept.join(", ");
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
            {"defaults", 50, 4, 1, 1, 0, 55, "50 X, 50 prompt, 53 pre, 54 micropause | 0"},
            {"EveryM 0", 0, 2, 1, 1, 0, 600, "| -600"},
            {"idle", 1, 3, 1, 1, -1, 60, "1 X, 1 prompt | 0"},
            {"idle, no IntelliReset", 1, 2, 1, 0, -1, 5,
             "1 X, 1 prompt, 2 pre, 3 micropause, 4 pre, 5 micropause | 0"},
        };
        for (const auto& c : cases) {
            EngineRig rig;
            rig.settings.EveryM = c.everyM;
            rig.settings.InterruptEvery = c.interruptEvery;
            rig.settings.AudiblePre = c.audiblePre;
            rig.settings.IntelliReset = c.intelliReset;
            rig.engine.scheduler().SetTimers();
            rig.run(c.minutes, c.channel);
            // The calls, then the exercise countdown, which stands still while the prompt is up.
            const QString got = entries(rig.log, {"X", "prompt", "pre", "micropause"}) +
                                QStringLiteral(" | %1").arg(rig.state.MinutesToExercise);
            QCOMPARE(QLatin1String(c.name) + ": " + got.trimmed(), QLatin1String(c.name) + ": " + c.calls);
        }
    }

    void statusTextsAndTheNaturalPauseCheck() {
        EngineRig rig;
        rig.settings.EveryM = 60;
        rig.engine.scheduler().SetTimers();
        QCOMPARE(rig.exerciseText, "Next Exercise Break: 59 minutes");
        QCOMPARE(rig.sourceText, "Activity: made up by the test");
        rig.monitor.setDescription("Natural pauses are not detected here: a test."); // the source was lost
        rig.run(2, -1);
        QCOMPARE(rig.exerciseText, "Next Exercise Break: 57 minutes");
        QCOMPARE(rig.sourceText, "Natural pauses are not detected here: a test.");
        QCOMPARE(rig.voluntaryText, "Last natural micropause: 09:02");
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

    void aMicropauseFromStartToEnd() {
        for (const std::int32_t seconds : {1, 15}) {
            EngineRig rig;
            rig.settings.InterruptFor = seconds;
            rig.engine.scheduler().SetTimers();
            rig.state.MinutesToMicropause = 0;
            rig.clock.setLocalNow(QDateTime(QDate(2026, 11, 23), QTime(14, 30)));
            rig.engine.micropause().TarvoMicropause();
            QCOMPARE(rig.state.MinutesToMicropause, 4); // the next one is counted from now
            QVERIFY(rig.state.InMicropause);
            QCOMPARE(rig.bar.max, seconds * 10);
            QCOMPARE(rig.bar.value, 1);
            QCOMPARE(rig.engine.tSeconds().interval(), 100);
            QCOMPARE(rig.log, (QStringList{"0 micropause esc=1", "0 warning", "0 present blank=1"}));

            QCOMPARE(rig.ticksUntilOver(), 10 * seconds - 1); // one tick short of the full length
            QCOMPARE(rig.log.mid(3), (QStringList{"0 dismiss", "0 notification"}));
            QCOMPARE(rig.lastText, "Last tarvo micropause: 14:30");
            QCOMPARE(rig.engine.tSeconds().interval(), seconds * 1000); // back to the natural-pause check
            QVERIFY(rig.engine.tSeconds().isEnabled() && rig.engine.tMinutes().isEnabled());
        }
    }

    void escapeAndASecondStart() {
        EngineRig rig;
        rig.settings.Audible = 0;
        rig.settings.Blank = 0;
        rig.engine.scheduler().SetTimers();
        MicropauseBreak& micropause = rig.engine.micropause();
        micropause.TarvoMicropause();
        QCOMPARE(rig.log, (QStringList{"0 micropause esc=1", "0 present blank=0"}));
        rig.timeline.advance(300);
        micropause.cmdCancel_Click();
        QCOMPARE(rig.ticksUntilOver(), 1); // the next tick ends it the ordinary way
        QCOMPARE(rig.log.last(), "0 dismiss");
        QVERIFY(!rig.lastText.isEmpty());

        // Esc in the last tick sets the bar back one step: the break ends one tick later.
        micropause.TarvoMicropause();
        rig.timeline.advance(100 * 148);
        QCOMPARE(rig.bar.value, 149);
        micropause.cmdCancel_Click();
        QCOMPARE(rig.bar.value, 149);
        QCOMPARE(rig.ticksUntilOver(), 1);

        // A second start during a break starts the bar again from 1.
        micropause.TarvoMicropause();
        rig.timeline.advance(1500);
        micropause.TarvoMicropause();
        QCOMPARE(rig.bar.value, 1);
        QCOMPARE(rig.ticksUntilOver(), 149);

        // With Esc disabled (by either switch, merged at load) the hint stays hidden and Esc does nothing;
        // the options dialog still cuts a break short that is more than 3 steps from its end.
        rig.settings.DisableEsc = 1;
        rig.log.clear();
        micropause.TarvoMicropause();
        QCOMPARE(rig.log.first(), "0 micropause esc=0");
        micropause.cmdCancel_Click();
        QCOMPARE(rig.bar.value, 1);
        micropause.cutShort();
        QCOMPARE(rig.ticksUntilOver(), 1);
        micropause.TarvoMicropause();
        rig.bar.value = 147;
        micropause.cutShort();
        QCOMPARE(rig.ticksUntilOver(), 3);
    }

    // 09:00 to 17:00 with the default options: busy all morning, away for lunch from 12:00 to 13:00,
    // busy all afternoon. Micropauses come every 4 minutes once the exercise prompt is up, none while
    // the user is away (every check finds a natural pause and holds the countdown at its full length),
    // and the minute timer never stops.
    void aWorkingDay() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.run(180, 0);
        rig.run(60, -1);
        rig.run(240, 1);
        const QStringList starts = entries(rig.log, {"micropause"}).split(", ");
        QCOMPARE(entries(rig.log, {"X", "prompt"}), "50 X, 50 prompt");
        QCOMPARE(starts.first(), "54 micropause");
        QVERIFY(starts.contains("178 micropause") && starts.contains("243 micropause"));
        for (qsizetype i = 1; i < starts.size(); ++i) {
            const int minute = starts[i].section(' ', 0, 0).toInt();
            const int before = starts[i - 1].section(' ', 0, 0).toInt();
            QVERIFY2(minute - before == 4 || (before == 178 && minute == 243), qPrintable(starts[i]));
        }
        QCOMPARE(starts.size(), 32 + 60);
        QCOMPARE(rig.log.filter(QRegularExpression("^\\d+ dismiss$")).size(), starts.size());
        QCOMPARE(rig.voluntaryText, "Last natural micropause: 12:59");
        QCOMPARE(rig.lastText, "Last tarvo micropause: 16:59");
        QVERIFY(!rig.state.InMicropause && rig.engine.tMinutes().isEnabled());
    }

    void applyAdjustsTheRunningSchedule() {
        // {interval in effect, minutes left, new interval, expected; exercise left, new EveryM, expected}
        const int cases[][7] = {
            {4, 3, 10, 9, 40, 50, 40}, {10, 3, 4, 2, 40, 30, 30}, {10, 1, 2, 2, -5, 0, -5}};
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
            QCOMPARE(rig.state.MicropauseReload, c[2]);
            QCOMPARE(rig.state.MinutesToExercise, c[6]);
            auto& tSeconds = static_cast<ManualTimer&>(rig.engine.tSeconds());
            QVERIFY(tSeconds.isRunning() && tSeconds.dueAt() == 30000); // a fresh check interval
            QCOMPARE(static_cast<ManualTimer&>(rig.engine.tMinutes()).dueAt(), 60000); // keeps its pace
        }
    }

    void counterOverflowRaises() {
        // The overflow of checked arithmetic, run-time error 6, leaves the handler.
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        auto& tMinutes = static_cast<ManualTimer&>(rig.engine.tMinutes());
        rig.state.MinutesToExercise = INT32_MIN + 1; // the count fits, the number shown does not
        QVERIFY_THROWS_EXCEPTION(RuntimeError, tMinutes.fire());
        rig.state.ExercisePromptPending = true;
        rig.state.MinutesToMicropause = INT32_MIN;
        QVERIFY_THROWS_EXCEPTION(RuntimeError, tMinutes.fire());
        rig.state.MinutesToMicropause = INT32_MAX;
        rig.settings.InterruptEvery = rig.state.MicropauseReload + 1;
        QVERIFY_THROWS_EXCEPTION(RuntimeError, rig.engine.scheduler().ApplyMicropauseOptions());
        rig.settings.InterruptFor = 2147484;
        QVERIFY_THROWS_EXCEPTION(RuntimeError, rig.engine.scheduler().SetTimers());
    }
};

QTEST_GUILESS_MAIN(TestBreakEngine)
#include "tst_breakengine.moc"
