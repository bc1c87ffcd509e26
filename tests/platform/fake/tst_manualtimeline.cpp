// The simulated time that every schedule test runs on: the fake clock wraps like the real tick count,
// and the manual timeline fires every timer that falls due, in order, as the real timers would.
#include "platform/fake/FakeClock.h"
#include "platform/fake/ManualTimer.h"

#include <QtTest>

using namespace tarvo;

namespace {

// Each tick as "<timer>@<moment>"; the first timer's tick sets the second one's interval to 100 ms.
struct Log : Timer::Listener {
    FakeClock& clock;
    Timer* first = nullptr;
    Timer* second = nullptr;
    QStringList ticks;
    explicit Log(FakeClock& c)
        : clock(c) {}
    void timerTick(Timer& timer) override {
        ticks << QStringLiteral("%1@%2").arg(&timer == first ? "a" : "b").arg(clock.tickCount());
        if (&timer == first && second->interval() > 60000)
            second->setInterval(100);
    }
};

} // namespace

class TestManualTimeline : public QObject {
    Q_OBJECT

private slots:
    void firesInOrderAndKeepsTheClock() {
        FakeClock wrapping(2147483000);
        wrapping.advance(1000);
        QCOMPARE(wrapping.tickCount(), -2147483296);

        FakeClock clock(0);
        ManualTimeline timeline(&clock);
        Log log(clock);
        const auto a = timeline.createTimer(log);
        const auto b = timeline.createTimer(log);
        log.first = a.get();
        log.second = b.get();
        a->setInterval(60000);
        b->setInterval(15000);
        a->setEnabled(true);
        b->setEnabled(true);
        // Timers due at the same moment fire in the order they were created.
        QCOMPARE(timeline.advance(60000), 5);
        QCOMPARE(log.ticks, (QStringList{"b@15000", "b@30000", "b@45000", "a@60000", "b@60000"}));
        QCOMPARE(clock.localNow().time(), QTime(9, 1));

        // A tick that changes another timer's interval restarts that timer's period from the moment.
        b->setInterval(1000000);
        log.ticks.clear();
        timeline.advance(60250);
        QCOMPARE(log.ticks, (QStringList{"a@120000", "b@120100", "b@120200"}));
        b->setEnabled(false);
        QCOMPARE(timeline.advance(120000), 2);
        QVERIFY(!ManualTimer(log).fire()); // a timer that would not run delivers nothing
    }
};

QTEST_GUILESS_MAIN(TestManualTimeline)
#include "tst_manualtimeline.moc"
