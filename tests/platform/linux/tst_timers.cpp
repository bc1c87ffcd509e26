// Time seams: the tick count's base and wrap, the real timer's semantics, and the manual timeline
// that runs hours of schedule in an instant.
#include "platform/fake/FakeClock.h"
#include "platform/fake/ManualTimer.h"
#include "platform/linux/QtTimer.h"
#include "platform/linux/SystemClock.h"

#include <QtTest>

#include <ctime>

using namespace tarvo;

class TestTimers : public QObject {
    Q_OBJECT

private slots:
    void tickCountIsBootTimeInMilliseconds() {
        timespec ts{};
        clock_gettime(CLOCK_BOOTTIME, &ts);
        const auto expected = static_cast<std::uint32_t>(static_cast<std::uint64_t>(ts.tv_sec) * 1000u +
                                                         static_cast<std::uint64_t>(ts.tv_nsec) / 1000000u);
        const auto tick = static_cast<std::uint32_t>(SystemClock().tickCount());
        QVERIFY2(tick - expected < 1000u,
                 "the tick count must be CLOCK_BOOTTIME in ms, truncated to 32 bits");

        FakeClock clock(2147483000);
        clock.advance(1000);
        QCOMPARE(clock.tickCount(), -2147483296); // wraps to negative like the real one
        QCOMPARE(formatHhNn(QDateTime(QDate(2026, 1, 2), QTime(9, 5, 59))), "09:05");
    }

    void qtTimerFiresOnlyWhenEnabledWithAnInterval() {
        QtTimer timer;
        int ticks = 0;
        timer.setHandler([&] { ++ticks; });
        timer.setInterval(10);
        QTest::qWait(50);
        QCOMPARE(ticks, 0); // not enabled
        timer.setEnabled(true);
        QTRY_VERIFY_WITH_TIMEOUT(ticks >= 3, 2000);
        timer.setInterval(0); // an interval of 0 never fires, even enabled
        const int stopped = ticks;
        QTest::qWait(50);
        QCOMPARE(ticks, stopped);
        QVERIFY(timer.isEnabled());
        timer.setInterval(20);
        QTRY_VERIFY_WITH_TIMEOUT(ticks > stopped, 2000);
        timer.setEnabled(false);
        const int disabled = ticks;
        QTest::qWait(60);
        QCOMPARE(ticks, disabled);
    }

    void manualTimelineRunsAnHourInOrder() {
        FakeClock clock(0);
        ManualTimeline timeline(&clock);
        auto minutes = timeline.createTimer();
        auto seconds = timeline.createTimer();
        QStringList log;
        minutes->setHandler([&] { log << QStringLiteral("m@%1").arg(clock.tickCount()); });
        seconds->setHandler([&] { log << QStringLiteral("s@%1").arg(clock.tickCount()); });
        minutes->setInterval(60000);
        seconds->setInterval(15000);
        minutes->setEnabled(true);
        seconds->setEnabled(true);

        QCOMPARE(timeline.advance(60000), 5);
        // Timers due at the same moment fire in the order they were created.
        QCOMPARE(log, (QStringList{"s@15000", "s@30000", "s@45000", "m@60000", "s@60000"}));
        QCOMPARE(clock.tickCount(), 60000);

        log.clear();
        QCOMPARE(timeline.advance(59 * 60000), 59 + 59 * 4);
        QCOMPARE(clock.localNow().time(), QTime(10, 0));

        // A handler that changes the other timer's interval restarts its period from that moment.
        minutes->setHandler([&] { seconds->setInterval(100); });
        seconds->setHandler([&] { log << QStringLiteral("s@%1").arg(timeline.now()); });
        log.clear();
        seconds->setInterval(1000000);
        timeline.advance(60250);
        QCOMPARE(log, (QStringList{"s@3660100", "s@3660200"}));

        seconds->setEnabled(false);
        QCOMPARE(timeline.advance(120000), 2);
        auto manual = std::make_unique<ManualTimer>();
        QVERIFY(!manual->fire()); // a timer that would not run delivers nothing
    }
};

QTEST_GUILESS_MAIN(TestTimers)
#include "tst_timers.moc"
