// Breaks and the person at the machine, on simulated time: a locked screen as a pause, and breaks held
// while the person is busy, the limit, and a natural pause that covers a held micropause.
#include "engine/EngineRig.h"

#include <QtTest>

using namespace tarvo;

namespace {

// The breaks and warnings that came, "<minute> <what>".
QString breaks(const EngineRig& rig) {
    return rig.entries({"X", "prompt", "pre", "micropause", "notification"});
}

} // namespace

class TestPresenceHold : public QObject {
    Q_OBJECT

private slots:
    // InterruptFor 15 and EveryM 50: a lock of 30 s or 2 min is a natural micropause, one of an hour
    // also starts the exercise countdown afresh and drops the prompt that fell due meanwhile.
    void aLockedScreenIsAPause() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.engine.micropause().TarvoMicropause(); // on screen when the lock comes: ends as taken, quietly
        rig.presence.set(PresenceCondition::Locked, true);
        QVERIFY(!rig.state.InMicropause);
        QCOMPARE(rig.presenceText, "Screen locked");
        QCOMPARE(rig.lastText, "Last tarvo micropause: 09:00");
        QCOMPARE(breaks(rig), "0 micropause");
        rig.presence.set(PresenceCondition::Locked, false);

        rig.runSeconds(10 * 60 - 1); // typing until 09:10
        const auto lock = [&](int lockedSeconds) {
            rig.presence.set(PresenceCondition::Locked, true);
            rig.runSeconds(lockedSeconds); // the password typed meanwhile is no natural pause
            rig.voluntaryText.clear();
            rig.presence.set(PresenceCondition::Locked, false);
        };
        lock(30);
        QCOMPARE(rig.voluntaryText, "Last natural micropause: 09:10");
        QCOMPARE(rig.state.MinutesToExercise, 40);
        lock(120);
        QCOMPARE(rig.voluntaryText, "Last natural micropause: 09:12");
        QCOMPARE(rig.state.MinutesToExercise, 38);
        lock(60 * 60); // nothing comes during or after the locks (see the end)
        QCOMPARE(rig.state.MinutesToExercise, 50);

        rig.settings.LockPause = 0; // off: a lock is nothing special
        rig.presence.set(PresenceCondition::Locked, true);
        rig.runSeconds(50 * 60);
        QCOMPARE(breaks(rig), "0 micropause, 122 X, 122 prompt");
    }

    // A full-screen window holds a due micropause, its pre-warning and the prompt; when it goes they
    // come once, within seconds, and the schedule after them keeps its minutes.
    void aBusyPersonHoldsBreaks() {
        EngineRig rig;
        rig.settings.EveryM = 1;
        rig.settings.InterruptEvery = 2;
        rig.engine.scheduler().SetTimers();
        rig.presence.set(PresenceCondition::FullScreen, true);
        QCOMPARE(rig.presenceText, "Held: full-screen window");
        rig.run(5, 0);      // due: 1 prompt, 2 pre, 3 micropause, 4 pre, 5 micropause
        rig.runSeconds(80); // and 6 pre
        // Switching between two full-screen windows lets nothing slip in between.
        rig.presence.set(PresenceCondition::FullScreen, false);
        rig.runSeconds(1);
        rig.presence.set(PresenceCondition::FullScreen, true);
        rig.runSeconds(10);
        QCOMPARE(breaks(rig), "");
        rig.presence.set(PresenceCondition::FullScreen, false);
        QCOMPARE(rig.presenceText, "");
        rig.runSeconds(5);
        QCOMPARE(breaks(rig), "6 X, 6 prompt, 6 micropause");
        rig.runSeconds(2 * 60); // the late break moved none of the others
        QCOMPARE(breaks(rig),
                 "6 X, 6 prompt, 6 micropause, 6 notification, 7 micropause, 7 notification, 8 pre");
    }

    // Do-not-disturb holds; an idle inhibitor whose option is off does not. A natural pause during
    // the hold covers the held micropause, not the prompt. With a limit of 2 minutes, held breaks
    // come anyway.
    void naturalPausesAndTheLimit() {
        EngineRig rig;
        rig.settings.EveryM = 1;
        rig.settings.InterruptEvery = 2;
        rig.settings.HoldInhibited = 0;
        rig.engine.scheduler().SetTimers();
        rig.presence.set(PresenceCondition::IdleInhibited, true);
        rig.presence.set(PresenceCondition::DoNotDisturb, true);
        QCOMPARE(rig.presenceText, "Held: do not disturb");
        rig.run(3, 0);
        rig.runSeconds(40, -1);
        QCOMPARE(rig.voluntaryText, "Last natural micropause: 09:03");
        rig.presence.set(PresenceCondition::DoNotDisturb, false);
        QCOMPARE(rig.presenceText, "");
        rig.runSeconds(5);
        QCOMPARE(breaks(rig), "3 X, 3 prompt");

        // Held from minute 4 (the pre-warning) and 5 (the micropause), it comes at the second tick.
        rig.settings.HoldLimit = 2;
        rig.presence.set(PresenceCondition::FullScreen, true);
        rig.run(3, 0);
        QCOMPARE(breaks(rig), "3 X, 3 prompt, 6 micropause, 6 notification");
    }
};

QTEST_GUILESS_MAIN(TestPresenceHold)
#include "tst_presencehold.moc"
