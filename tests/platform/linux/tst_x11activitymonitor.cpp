// The X11 activity monitor against a real X server: a private Xvfb, with input from xdotool (XTEST).
#include "platform/fake/FakeClock.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/X11ActivityMonitor.h"
#include "support/XvfbServer.h"

#include <QProcess>
#include <QTest>

#include <memory>

using namespace tarvo;

namespace {

// Whether a stamp lies between tick counts read around the input (with the monitor's 1 ms allowance).
bool between(std::int32_t low, std::int32_t stamp, std::int32_t high) {
    return low <= stamp && stamp <= high + 1;
}

} // namespace

class TestX11ActivityMonitor : public QObject {
    Q_OBJECT

private:
    XvfbServer xvfb_;

    // Runs xdotool with space-separated arguments on the test's display (DISPLAY) while the event loop
    // runs, so that the monitor sees the events as they come, as it would in the program.
    void xdotool(const QString& arguments) {
        QProcess process;
        process.start("xdotool", arguments.split(u' '));
        QVERIFY(process.waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 10000);
        QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
    }

    // A monitor on the test's display with the given channels switched on.
    std::unique_ptr<X11ActivityMonitor> openMonitor(std::initializer_list<int> channels,
                                                    const Clock* clock = nullptr) {
        auto monitor = X11ActivityMonitor::open(xvfb_.display(), nullptr, clock);
        for (const int channel : channels)
            if (monitor)
                monitor->InstallFilter(channel, true);
        return monitor;
    }

private slots:
    void initTestCase() {
        if (!XvfbServer::installed())
            QSKIP("Xvfb is not installed");
        QVERIFY2(xvfb_.start(), "Xvfb did not start");
        qputenv("DISPLAY", xvfb_.display());
        qunsetenv("WAYLAND_DISPLAY");
        qunsetenv("XDG_SESSION_TYPE");
    }

    // A key stamps channel 0 and relative motion channel 1, each with the tick count of the moment and
    // only its own. A switched-off channel is not even selected: motion before a key reaches nothing,
    // and a keyboard switched off keeps its stamp. After a look, a channel is heard again.
    void inputReachesItsChannel() {
        auto monitor = openMonitor({0});
        QVERIFY(monitor);
        std::int32_t before = SystemClock::currentTickCount();
        xdotool("mousemove_relative 3 3 key a");
        QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(0) != 0, 3000);
        QVERIFY(between(before, monitor->VexGetTime(0), SystemClock::currentTickCount()));
        QCOMPARE(monitor->VexGetTime(1), 0);
        QCOMPARE(monitor->eventsReceived(), std::uint64_t(1));

        const std::int32_t first = monitor->VexGetTime(0);
        monitor->InstallFilter(1, true);
        xdotool("key b");
        QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(0) > first, 3000);
        QCOMPARE(monitor->VexGetTime(1), 0);

        const std::int32_t key = monitor->VexGetTime(0);
        monitor->InstallFilter(0, false);
        before = SystemClock::currentTickCount();
        xdotool("key a mousemove_relative 7 5");
        QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(1) != 0, 3000);
        QVERIFY(between(before, monitor->VexGetTime(1), SystemClock::currentTickCount()));
        QCOMPARE(monitor->VexGetTime(0), key);
    }

    // Twenty keys and twenty motions with nobody looking: the first of each disarms its channel and only
    // what was already on its way follows. A monitor that kept listening would take all forty.
    void burstCostsOneEventPerLook() {
        auto monitor = openMonitor({0, 1});
        QVERIFY(monitor);
        const std::int32_t start = SystemClock::currentTickCount();
        QStringList burst;
        for (int i = 0; i < 20; ++i)
            burst << QStringLiteral("key a mousemove_relative -- %1 0 sleep 0.02").arg(i % 2 ? -2 : 2);
        xdotool(burst.join(u' '));
        QTest::qWait(100); // anything still on its way arrives now
        const std::uint64_t received = monitor->eventsReceived();
        QVERIFY2(received >= 2 && received <= 12, QByteArray::number(static_cast<qulonglong>(received)));
        const std::int32_t end = SystemClock::currentTickCount();
        QVERIFY(between(start, monitor->VexGetTime(0), end));
        QVERIFY(between(start, monitor->VexGetTime(1), end));
    }

    // After a look the next event is heard again, and one in the very millisecond of the look still
    // makes the stamp grow, or a moving mouse would pass for a natural pause.
    void stampGrowsWithinOneMillisecond() {
        FakeClock clock(123456);
        auto monitor = openMonitor({1}, &clock);
        QVERIFY(monitor);
        xdotool("mousemove_relative 2 2");
        QTRY_COMPARE_WITH_TIMEOUT(monitor->VexGetTime(1), 123456, 3000);
        xdotool("mousemove_relative -- -2 -2");
        QTRY_COMPARE_WITH_TIMEOUT(monitor->VexGetTime(1), 123457, 3000);
    }
};

QTEST_GUILESS_MAIN(TestX11ActivityMonitor)
#include "tst_x11activitymonitor.moc"
