// The simulated time that every schedule test runs on: the fake clock's wrap, and the manual timeline
// that runs hours of timers in an instant, in order.
#include "platform/fake/FakeClock.h"
#include "platform/fake/ManualTimer.h"

#include <QtTest>

using namespace tarvo;

namespace {

// Each tick as "<name>@<moment>"; a tick may also run an action.
struct Log : Timer::Listener {
    FakeClock& clock;
    std::map<const Timer*, QString> names;
    std::map<const Timer*, std::function<void()>> actions;
    QStringList ticks;
    explicit Log(FakeClock& c)
        : clock(c) {}
    void timerTick(Timer& timer) override {
        ticks << QStringLiteral("%1@%2").arg(names[&timer]).arg(clock.tickCount());
        if (actions[&timer])
            actions[&timer]();
    }
};

} // namespace

class TestManualTimeline : public QObject {
    Q_OBJECT

private slots:
    void fakeClockWrapsAndShowsHoursAndMinutes() {
        FakeClock clock(2147483000);
        clock.advance(1000);
        QCOMPARE(clock.tickCount(), -2147483296); // wraps to negative like the real one
        QCOMPARE(formatHhNn(QDateTime(QDate(2026, 1, 2), QTime(9, 5, 59))), "09:05");
    }

    void runsAnHourInOrder() {
        FakeClock clock(0);
        ManualTimeline timeline(&clock);
        Log log(clock);
        auto minutes = timeline.createTimer(log);
        auto seconds = timeline.createTimer(log);
        log.names = {{minutes.get(), "m"}, {seconds.get(), "s"}};
        minutes->setInterval(60000);
        seconds->setInterval(15000);
        minutes->setEnabled(true);
        seconds->setEnabled(true);

        QCOMPARE(timeline.advance(60000), 5);
        // Timers due at the same moment fire in the order they were created.
        QCOMPARE(log.ticks, (QStringList{"s@15000", "s@30000", "s@45000", "m@60000", "s@60000"}));
        QCOMPARE(timeline.advance(59 * 60000), 59 + 59 * 4);
        QCOMPARE(clock.localNow().time(), QTime(10, 0));

        // A tick that changes the other timer's interval restarts its period from that moment.
        log.actions[minutes.get()] = [&] { seconds->setInterval(100); };
        seconds->setInterval(1000000);
        log.ticks.clear();
        timeline.advance(60250);
        QCOMPARE(log.ticks, (QStringList{"m@3660000", "s@3660100", "s@3660200"}));

        seconds->setEnabled(false);
        QCOMPARE(timeline.advance(120000), 2);
        ManualTimer alone(log);
        QVERIFY(!alone.fire()); // a timer that would not run delivers nothing
    }
};

QTEST_GUILESS_MAIN(TestManualTimeline)
#include "tst_manualtimeline.moc"
