// The X11 activity monitor against a real X server: a private Xvfb, with input from xdotool (XTEST).
#include "ActivityMonitorFactory.h"
#include "FakeClock.h"
#include "SystemClock.h"
#include "UnavailableActivityMonitor.h"
#include "X11ActivityMonitor.h"
#include "XvfbServer.h"

#include <QProcess>
#include <QTest>

#include <cstdio>
#include <ctime>
#include <memory>

using namespace tarvo;

namespace {

// Whether a stamp lies between two tick counts read around the input (with the one-millisecond allowance
// the monitor may add).
bool between(std::int32_t low, std::int32_t stamp, std::int32_t high) {
    return low <= stamp && stamp <= high + 1;
}

QString readAll(std::FILE* file) {
    std::fflush(file);
    std::rewind(file);
    QByteArray text;
    char buffer[256];
    while (const size_t n = std::fread(buffer, 1, sizeof buffer, file))
        text.append(buffer, static_cast<qsizetype>(n));
    return QString::fromLocal8Bit(text);
}

double cpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

} // namespace

class TestX11ActivityMonitor : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void inputReachesItsChannel();
    void switchedOffChannelIsNotSelected();
    void burstCostsOneEventPerLook();
    void stampGrowsWithinOneMillisecond();
    void fallbackWithoutX11Display();
    void survivesTheServerGoingAway();

private:
    // Runs xdotool on the test's display and waits for it while the event loop runs, so that the monitor
    // sees the events as they come, as it would in the program.
    void xdotool(const QStringList& arguments);
    std::unique_ptr<X11ActivityMonitor> openMonitor(const QByteArray& display);

    XvfbServer xvfb_;
    QByteArray savedDisplay_;
};

void TestX11ActivityMonitor::initTestCase() {
    if (!XvfbServer::installed())
        QSKIP("Xvfb is not installed");
    QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("xdotool")).isEmpty(),
             "xdotool is not installed");
    QVERIFY2(xvfb_.start(), "Xvfb did not start");
    savedDisplay_ = qgetenv("DISPLAY");
}

void TestX11ActivityMonitor::cleanup() {
    qputenv("DISPLAY", savedDisplay_);
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("XDG_SESSION_TYPE");
}

void TestX11ActivityMonitor::xdotool(const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), QString::fromLocal8Bit(xvfb_.display()));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral("xdotool"), arguments);
    QVERIFY(process.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 10000);
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
}

std::unique_ptr<X11ActivityMonitor> TestX11ActivityMonitor::openMonitor(const QByteArray& display) {
    QString whyNot;
    auto monitor = X11ActivityMonitor::open(display, &whyNot);
    if (!monitor)
        qWarning("%s", qPrintable(whyNot));
    return monitor;
}

void TestX11ActivityMonitor::inputReachesItsChannel() {
    auto monitor = openMonitor(xvfb_.display());
    QVERIFY(monitor);
    monitor->InstallFilter(0, true);
    monitor->InstallFilter(1, true);
    QCOMPARE(monitor->VexGetTime(0), 0);
    QCOMPARE(monitor->VexGetTime(1), 0);

    // A key press stamps channel 0 with the tick count of the moment, and only channel 0.
    std::int32_t before = SystemClock::currentTickCount();
    xdotool({QStringLiteral("key"), QStringLiteral("a")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(0) != 0, 3000);
    const std::int32_t key = monitor->VexGetTime(0);
    QVERIFY(between(before, key, SystemClock::currentTickCount()));
    QCOMPARE(monitor->VexGetTime(1), 0);

    // Relative pointer motion stamps channel 1, and only channel 1.
    before = SystemClock::currentTickCount();
    xdotool({QStringLiteral("mousemove_relative"), QStringLiteral("7"), QStringLiteral("5")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(1) != 0, 3000);
    QVERIFY(between(before, monitor->VexGetTime(1), SystemClock::currentTickCount()));
    QCOMPARE(monitor->VexGetTime(0), key);

    // The wheel (a button to XInput) counts as mouse use; each later look sees the stamp grow again.
    const std::int32_t motion = monitor->VexGetTime(1);
    xdotool({QStringLiteral("click"), QStringLiteral("5")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(1) > motion, 3000);
    xdotool({QStringLiteral("key"), QStringLiteral("b")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(0) > key, 3000);
}

void TestX11ActivityMonitor::switchedOffChannelIsNotSelected() {
    auto monitor = openMonitor(xvfb_.display());
    QVERIFY(monitor);
    monitor->InstallFilter(0, true);

    // Motion first, then a key: the server delivers in order, so once the key is seen the motion would
    // have been seen too. Not one event of the mouse reaches the process: it is not even selected.
    xdotool({QStringLiteral("mousemove_relative"), QStringLiteral("3"), QStringLiteral("3"),
             QStringLiteral("key"), QStringLiteral("a")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(0) != 0, 3000);
    QCOMPARE(monitor->VexGetTime(1), 0);
    const std::uint64_t keyEventsOnly = monitor->eventsReceived();
    QCOMPARE(keyEventsOnly, std::uint64_t(1));

    // The other way round, after switching: the keyboard goes silent and keeps its stamp.
    const std::int32_t keyStamp = monitor->VexGetTime(0);
    monitor->InstallFilter(0, false);
    monitor->InstallFilter(1, true);
    xdotool({QStringLiteral("key"), QStringLiteral("a"), QStringLiteral("mousemove_relative"),
             QStringLiteral("3"), QStringLiteral("3")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(1) != 0, 3000);
    QCOMPARE(monitor->VexGetTime(0), keyStamp);

    // Switched on again, the keyboard is heard again.
    monitor->InstallFilter(0, true);
    xdotool({QStringLiteral("key"), QStringLiteral("a")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor->VexGetTime(0) > keyStamp, 3000);
}

void TestX11ActivityMonitor::burstCostsOneEventPerLook() {
    auto monitor = openMonitor(xvfb_.display());
    QVERIFY(monitor);
    monitor->InstallFilter(0, true);
    monitor->InstallFilter(1, true);
    const std::int32_t start = SystemClock::currentTickCount();

    // Twenty key presses and twenty motions with nobody looking: the first of each disarms its channel,
    // and only what was already on its way follows. A monitor that kept listening would take all forty.
    QStringList burst;
    for (int i = 0; i < 20; ++i)
        burst << QStringLiteral("key") << QStringLiteral("a") << QStringLiteral("mousemove_relative")
              << QStringLiteral("--") << QString::number(i % 2 ? -2 : 2) << QStringLiteral("0")
              << QStringLiteral("sleep") << QStringLiteral("0.02");
    xdotool(burst);
    QTest::qWait(100); // anything still on its way arrives now
    const std::uint64_t received = monitor->eventsReceived();
    QVERIFY2(received >= 2 && received <= 12, QByteArray::number(static_cast<qulonglong>(received)));

    // Both channels were stamped during the burst.
    const std::int32_t end = SystemClock::currentTickCount();
    QVERIFY(between(start, monitor->VexGetTime(0), end));
    QVERIFY(between(start, monitor->VexGetTime(1), end));
}

void TestX11ActivityMonitor::stampGrowsWithinOneMillisecond() {
    // A 1000 Hz mouse can deliver its next event in the very millisecond of the scheduler's look. The
    // stamp must still grow, or the scheduler would take a moving mouse for a natural pause.
    FakeClock clock(123456);
    QString whyNot;
    auto monitor = X11ActivityMonitor::open(xvfb_.display(), &whyNot, &clock);
    QVERIFY2(monitor, qPrintable(whyNot));
    monitor->InstallFilter(1, true);
    xdotool({QStringLiteral("mousemove_relative"), QStringLiteral("2"), QStringLiteral("2")});
    QTRY_COMPARE_WITH_TIMEOUT(monitor->VexGetTime(1), 123456, 3000);
    xdotool({QStringLiteral("mousemove_relative"), QStringLiteral("--"), QStringLiteral("-2"),
             QStringLiteral("-2")});
    QTRY_COMPARE_WITH_TIMEOUT(monitor->VexGetTime(1), 123457, 3000);
}

void TestX11ActivityMonitor::fallbackWithoutX11Display() {
    const auto messagesOf = [](std::FILE* file) { return readAll(file); };

    // The offscreen platform with a perfectly good DISPLAY: the program is not on X11, so nothing is watched.
    qputenv("DISPLAY", xvfb_.display());
    std::FILE* messages = std::tmpfile();
    QVERIFY(messages);
    auto offscreen = createActivityMonitor(QStringLiteral("offscreen"), messages);
    QVERIFY(messagesOf(messages).isEmpty()); // nothing asked of it yet
    offscreen->InstallFilter(0, true);
    offscreen->InstallFilter(1, true);
    offscreen->InstallFilter(0, false);
    offscreen->InstallFilter(0, true);
    xdotool({QStringLiteral("key"), QStringLiteral("a"), QStringLiteral("mousemove_relative"),
             QStringLiteral("4"), QStringLiteral("4")});
    QCOMPARE(offscreen->VexGetTime(0), 0);
    QCOMPARE(offscreen->VexGetTime(1), 0);
    const QString said = messagesOf(messages);
    QCOMPARE(said.count(QLatin1Char('\n')), 1);
    QVERIFY2(said.contains(QLatin1String("natural pauses cannot be detected here")), qPrintable(said));
    QVERIFY2(said.contains(QLatin1String("offscreen")), qPrintable(said));
    std::fclose(messages);

    // The reasons, one per kind of session; a monitor never switched on says nothing.
    struct Case {
        const char* platform;
        QByteArray display;
        const char* wayland;
        const char* reasonPart;
    };
    const Case cases[] = {
        {"xcb", QByteArray(), nullptr, "DISPLAY is not set"},
        {"xcb", xvfb_.display(), "wayland-0", "Wayland"},
        {"wayland", xvfb_.display(), nullptr, "Wayland"},
        {"xcb", QByteArray(":4077"), nullptr, "cannot connect"},
    };
    for (const Case& c : cases) {
        qputenv("DISPLAY", c.display);
        if (c.wayland)
            qputenv("WAYLAND_DISPLAY", c.wayland);
        else
            qunsetenv("WAYLAND_DISPLAY");
        messages = std::tmpfile();
        auto monitor = createActivityMonitor(QString::fromLatin1(c.platform), messages);
        const auto* unavailable = dynamic_cast<UnavailableActivityMonitor*>(monitor.get());
        QVERIFY2(unavailable, c.reasonPart);
        QVERIFY2(unavailable->reason().contains(QLatin1String(c.reasonPart)),
                 qPrintable(unavailable->reason()));
        QVERIFY(messagesOf(messages).isEmpty());
        std::fclose(messages);
    }
    qunsetenv("WAYLAND_DISPLAY");

    // And on X11 proper, the real thing.
    qputenv("DISPLAY", xvfb_.display());
    QVERIFY(dynamic_cast<X11ActivityMonitor*>(createActivityMonitor(QStringLiteral("xcb")).get()));
}

void TestX11ActivityMonitor::survivesTheServerGoingAway() {
    XvfbServer doomed;
    QVERIFY(doomed.start());
    auto monitor = openMonitor(doomed.display());
    QVERIFY(monitor);
    monitor->InstallFilter(0, true);
    monitor->InstallFilter(1, true);
    doomed.stop();

    // The closed socket stays readable for ever: a monitor that kept reading it would burn a core.
    QTest::qWait(50);
    const double cpuBefore = cpuSeconds();
    QTest::qWait(300);
    QVERIFY2(cpuSeconds() - cpuBefore < 0.1, "spinning on a dead connection");
    QCOMPARE(monitor->VexGetTime(0), 0);
    QCOMPARE(monitor->VexGetTime(1), 0);
    monitor->InstallFilter(0, false);
    monitor->InstallFilter(0, true);
}

QTEST_GUILESS_MAIN(TestX11ActivityMonitor)
#include "tst_x11activitymonitor.moc"
