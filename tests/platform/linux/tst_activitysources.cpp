// Where activity comes from: the X11 activity monitor against a private Xvfb with input from xdotool
// (XTEST); GNOME's idle monitor (against a stand-in on a private session bus) and the compositor's idle
// notification (against a stand-in compositor); the user counted as always active where nothing can be
// seen, which source a session gets, and a source that is lost on the way.
#include "MutterStandIn.h"
#include "engine/EngineRig.h"
#include "platform/fake/FakeClock.h"
#include "platform/linux/ActivityMonitorFactory.h"
#include "platform/linux/ExtIdleNotifyMonitor.h"
#include "platform/linux/MutterIdleMonitor.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/X11ActivityMonitor.h"
#include "support/XvfbServer.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <functional>
#include <memory>

using namespace tarvo;

namespace {

// Whether a stamp lies between tick counts read around the input (with the monitor's 1 ms allowance).
bool between(std::int32_t low, std::int32_t stamp, std::int32_t high) {
    return low <= stamp && stamp <= high + 1;
}

QString readAll(std::FILE* file) {
    std::fflush(file);
    std::rewind(file);
    QByteArray text(4096, '\0');
    text.resize(qsizetype(std::fread(text.data(), 1, size_t(text.size()), file)));
    return QString::fromLocal8Bit(text);
}

// What a stand-in makes the user do, for an idle-time source.
struct IdleUser {
    std::function<void()> input;
    std::function<void(int)> idleFor;
    std::function<void()> settle;            // waits until the monitor has heard all the stand-in said
    std::function<std::uint64_t()> received; // the notifications the monitor has heard
};

// Looks as the scheduler takes them, after what the user did in between ("i" input, "q<ms>" nothing for
// so long; the clock moves along): input is activity exactly when it came after the previous look, and
// notifications pass only when the user stops or comes back, never while they work or are away.
void checkLooks(IdleNotificationMonitor& monitor, FakeClock& clock, const IdleUser& user) {
    struct {
        const char* steps;
        bool grew;
        int received; // so far
    } const looks[] = {
        {"i q300 i q300 i q300 i q300 i q300 i q300 i q300 i q300 i q300 i q300", true, 0},
        {"q5000", false, 1}, // the last input came just before the previous look
        {"q5000", false, 1},
        {"q1000 i q4000", true, 3},
        {"i q1000", true, 4},
        {"q4000", false, 5},
        {"q2500 i q500", true, 6},
    };
    std::int32_t last = clock.tickCount();
    int idle = 0;
    for (const auto& look : looks) {
        for (const QString& step : QString::fromLatin1(look.steps).split(u' ')) {
            if (step == QLatin1String("i")) {
                user.input();
                user.settle();
                idle = 0;
            }
            // Nothing for a while: the clock stops when the idle notification is due, until it is heard.
            for (int quiet = step.mid(1).toInt(); quiet > 0;) {
                const int toIdle = idle < IdleNotificationMonitor::kIdleAfter
                                       ? IdleNotificationMonitor::kIdleAfter - idle
                                       : quiet;
                const int span = std::min(quiet, toIdle);
                clock.advance(span);
                user.idleFor(span);
                user.settle();
                idle += span;
                quiet -= span;
            }
        }
        const std::int32_t stamp = monitor.VexGetTime(0);
        QCOMPARE(monitor.VexGetTime(1), stamp); // keyboard and mouse are not told apart
        QVERIFY2((stamp > last) == look.grew, look.steps);
        QCOMPARE(user.received(), std::uint64_t(look.received));
        last = stamp;
    }
    // Off, a channel keeps its stamp.
    monitor.InstallFilter(1, false);
    clock.advance(5000);
    QCOMPARE(monitor.VexGetTime(1), last);
}

// The stand-in compositor (idle_compositor) on a socket in $XDG_RUNTIME_DIR.
struct IdleCompositor {
    struct Said {
        int events = -1, objects = -1;
    };
    const QByteArray name = "tarvo-idle-test";
    QProcess process;

    bool start() {
        process.start(QCoreApplication::applicationDirPath() + "/idle_compositor",
                      {QString::fromLatin1(name)});
        return process.waitForReadyRead(10000) && process.readLine().trimmed() == "ready";
    }
    void stop() {
        process.closeWriteChannel(); // it ends with its input
        process.waitForFinished(10000);
    }
    Said send(const QByteArray& command) {
        process.write(command + '\n');
        while (!process.canReadLine())
            if (!process.waitForReadyRead(10000))
                return {};
        const QList<QByteArray> words = process.readLine().trimmed().split(' ');
        return words.size() == 2 ? Said{words[0].toInt(), words[1].toInt()} : Said{};
    }
};

} // namespace

class TestActivitySources : public QObject {
    Q_OBJECT

private:
    QProcess bus_;
    std::unique_ptr<MutterStandIn> mutter_;
    XvfbServer xvfb_;
    QTemporaryDir runtimeDir_;
    IdleCompositor compositor_;

    // Runs xdotool with space-separated arguments on a display (the test's own unless told) while the
    // event loop runs, so that a monitor sees the events as they come, as it would in the program.
    void xdotool(const QString& arguments, const QByteArray& display = {}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", QString::fromLatin1(display.isEmpty() ? xvfb_.display() : display));
        process.setProcessEnvironment(environment);
        process.start("xdotool", arguments.split(u' '));
        QVERIFY(process.waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 10000);
        QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
    }

    // An X11 monitor on the test's display with the given channels switched on.
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
        if (!XvfbServer::installed() || QStandardPaths::findExecutable("dbus-daemon").isEmpty())
            QSKIP("Xvfb or dbus-daemon is not installed");
        bus_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        QVERIFY(bus_.waitForReadyRead(10000));
        const QByteArray address = bus_.readLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address); // before anything opens the session bus
        mutter_ = std::make_unique<MutterStandIn>(QString::fromLatin1(address));
        QVERIFY2(xvfb_.start(), "Xvfb did not start");
        qputenv("DISPLAY", xvfb_.display());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtimeDir_.path())); // no Wayland display but ours
        QVERIFY2(compositor_.start(), "the stand-in compositor did not start");
        qunsetenv("WAYLAND_DISPLAY");
        qunsetenv("XDG_SESSION_TYPE");
    }
    void cleanupTestCase() {
        compositor_.stop();
        mutter_.reset();
        bus_.kill();
        bus_.waitForFinished();
    }
    void cleanup() { mutter_->leave(); }

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

    // The scheduler's question at each look, whether a stamp grew since the previous look, answered
    // from GNOME's idle monitor. The watches are withdrawn when both channels go off.
    void mutterStampsShowInputSinceTheLastLook() {
        QVERIFY(mutter_->enter());
        FakeClock clock(100000);
        MutterIdleMonitor monitor(QDBusConnection::sessionBus(), clock);
        monitor.InstallFilter(0, true);
        monitor.InstallFilter(1, true);
        QTRY_COMPARE(mutter_->watches(true), 1);
        checkLooks(monitor, clock,
                   {[&] { mutter_->input(); }, [&](int ms) { mutter_->idleFor(quint64(ms)); },
                    [&] {
                        QTRY_COMPARE(monitor.firings(), std::uint64_t(mutter_->firings()));
                        // once idle, the user-active watch is in place before the next input
                        const bool idle = mutter_->idle() >= IdleNotificationMonitor::kIdleAfter;
                        QTRY_COMPARE(mutter_->watches(false), idle ? 1 : 0);
                    },
                    [&] { return monitor.firings(); }});
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(mutter_->watches(true), 1); // channel 0 is still on

        monitor.InstallFilter(0, false);
        QTRY_COMPARE(mutter_->watches(true) + mutter_->watches(false), 0);
        QVERIFY(monitor.lostReason().isEmpty());
    }

    // The same from the compositor's idle notification; its notification object goes when both
    // channels go off, and the monitor is lost when the compositor ends.
    void extIdleNotifyStampsShowInputSinceTheLastLook() {
        FakeClock clock(100000);
        QString whyNot;
        const auto monitor = ExtIdleNotifyMonitor::open(compositor_.name, clock, &whyNot);
        QVERIFY2(monitor, qPrintable(whyNot));
        monitor->InstallFilter(0, true);
        monitor->InstallFilter(1, true);
        QTRY_COMPARE(compositor_.send("idle 0").objects, 1);
        int sent = 0;
        checkLooks(*monitor, clock,
                   {[&] { sent = compositor_.send("input").events; },
                    [&](int ms) { sent = compositor_.send("idle " + QByteArray::number(ms)).events; },
                    [&] { QTRY_COMPARE(monitor->notifications(), std::uint64_t(sent)); },
                    [&] { return monitor->notifications(); }});
        if (QTest::currentTestFailed())
            return;
        monitor->InstallFilter(0, false);
        QTRY_COMPARE(compositor_.send("idle 0").objects, 0);
        QVERIFY(monitor->lostReason().isEmpty());
        compositor_.stop();
        QTRY_COMPARE(monitor->lostReason(), "the connection to the Wayland compositor was lost");
        QVERIFY(compositor_.start());
    }

    // X11 where Qt runs on an X11 display; where X11 cannot see the input the compositor's idle
    // notification, else GNOME's idle monitor; otherwise the user counts as always active, with the
    // reason in the status.
    void theSessionDecidesTheSource() {
        FakeClock clock;
        const QString x11 = "Natural pauses are detected from the keyboard and mouse of the X11 display.";
        const QString compositor = "Natural pauses are detected through the compositor's idle notification.";
        const QString gnome = "Natural pauses are detected through GNOME's idle monitor.";
        const QString none = "Natural pauses are not detected here: ";
        struct {
            const char* platform;
            QByteArray display;
            const char* wayland;
            bool gnome;
            QString description;
        } const cases[] = {
            {"xcb", xvfb_.display(), "", true, x11},
            {"wayland", xvfb_.display(), compositor_.name.constData(), true, compositor},
            {"xcb", QByteArray(), compositor_.name.constData(), false, compositor},
            {"wayland", xvfb_.display(), "", true, gnome},
            {"xcb", xvfb_.display(), "wayland-0", true, gnome},
            {"offscreen", QByteArray(), "", true, gnome},
            {"xcb", QByteArray(), "", false, none + "there is no X11 display (DISPLAY is not set)."},
            {"xcb", xvfb_.display(), "wayland-0", false,
             none + "this is a Wayland session (its X11 server sees only input to X11 windows)."},
            {"wayland", xvfb_.display(), "", false, none + "this is a Wayland session."},
            {"xcb", ":4077", "", false, none + "cannot connect to the X11 display \":4077\"."},
            {"offscreen", xvfb_.display(), "", false,
             none + "the program is not running on an X11 display (Qt platform \"offscreen\")."},
        };
        for (const auto& c : cases) {
            qputenv("DISPLAY", c.display);
            if (*c.wayland)
                qputenv("WAYLAND_DISPLAY", c.wayland);
            else
                qunsetenv("WAYLAND_DISPLAY");
            if (c.gnome)
                QVERIFY(mutter_->enter());
            else
                mutter_->leave();
            const auto monitor =
                createActivityMonitor({QString::fromLatin1(c.platform), QByteArray(), QByteArray(), clock});
            QCOMPARE(monitor->description(), c.description);
        }
        qunsetenv("WAYLAND_DISPLAY");
        qputenv("DISPLAY", xvfb_.display());
    }

    // With nothing to see the input by, a micropause still comes on schedule with IntelliReset on: each
    // look counts as activity. Standard error says once why natural pauses go undetected.
    void withNoSourceBreaksKeepTheirSchedule() {
        std::FILE* messages = std::tmpfile();
        QVERIFY(messages);
        EngineRig rig([messages](const Clock& clock) {
            return createActivityMonitor(
                {QStringLiteral("offscreen"), QByteArray(), QByteArray(), clock, messages});
        });
        rig.settings.EveryM = 1; // the micropause countdown runs while the exercise prompt is up
        rig.settings.InterruptEvery = 3;
        rig.settings.IntelliReset = 1;
        rig.engine.scheduler().SetTimers();
        rig.run(5, -1);
        QCOMPARE(rig.log.filter("micropause").join(", "), "4 micropause esc=1");
        QCOMPARE(rig.voluntaryWrites, 0);
        rig.ctx.monitor.InstallFilter(1, false); // a channel that is off keeps its stamp
        const std::int32_t mouse = rig.ctx.monitor.VexGetTime(1);
        rig.timeline.advance(1000);
        QCOMPARE(rig.ctx.monitor.VexGetTime(1), mouse);
        QCOMPARE(rig.ctx.monitor.VexGetTime(0), rig.clock.tickCount());
        const QString said = readAll(messages);
        std::fclose(messages);
        QCOMPARE(said.count(u'\n'), 1);
        QVERIFY2(said.contains("natural pauses cannot be detected here, because the program is not running"),
                 qPrintable(said));
    }

    // A lost X11 connection is made again when the display is back, and otherwise gives way to the user
    // counted as always active; GNOME's idle monitor leaving the bus does the same. The look that finds a
    // source lost counts as activity, never as a natural pause.
    void aLostSourceIsReplaced() {
        std::FILE* messages = std::tmpfile();
        QVERIFY(messages);
        FakeClock clock(50000);
        auto display = std::make_unique<XvfbServer>();
        QVERIFY(display->start());
        const QByteArray name = display->display();
        const auto monitor = createActivityMonitor({"xcb", name, QByteArray(), clock, messages});
        monitor->InstallFilter(0, true);
        monitor->InstallFilter(1, true);
        const QString x11 = monitor->description();
        QVERIFY(x11.contains("X11"));

        // The server goes and another takes its place on the same display.
        display.reset();
        display = std::make_unique<XvfbServer>();
        QVERIFY(display->start({QString::fromLatin1(name)}));
        clock.advance(3000);
        QCOMPARE(monitor->VexGetTime(0), clock.tickCount());
        QCOMPARE(monitor->VexGetTime(1), clock.tickCount());
        QCOMPARE(monitor->description(), x11);
        clock.advance(3000);
        xdotool("key a", name);
        QTRY_COMPARE(monitor->VexGetTime(0), clock.tickCount());

        // Gone for good: always active from the next look on.
        display.reset();
        for (int look = 0; look < 2; ++look) {
            clock.advance(3000);
            QCOMPARE(monitor->VexGetTime(0), clock.tickCount());
        }
        const QString lost = QStringLiteral("the connection to the X11 display \"%1\" was lost").arg(name);
        QCOMPARE(monitor->description(), "Natural pauses are not detected here: " + lost + ".");
        QCOMPARE(readAll(messages), "Tarvo Micropause: " + lost + ". " + x11 +
                                        "\nTarvo Micropause: natural pauses "
                                        "cannot be detected here, because " +
                                        lost + "; keyboard and mouse activity is not watched.\n");

        QVERIFY(mutter_->enter());
        mutter_->input(); // a user at work
        const auto gnome = createActivityMonitor({"wayland", QByteArray(), QByteArray(), clock, messages});
        const QString gnomeText = gnome->description();
        gnome->InstallFilter(0, true);
        QTRY_COMPARE(mutter_->watches(true), 1);
        mutter_->leave();
        for (int look = 0; look < 100 && gnome->description() == gnomeText; ++look) {
            clock.advance(3000);
            QCOMPARE(gnome->VexGetTime(0), clock.tickCount());
            QTest::qWait(10);
        }
        QCOMPARE(gnome->description(),
                 "Natural pauses are not detected here: GNOME's idle monitor has left the session bus.");
        std::fclose(messages);
    }
};

QTEST_GUILESS_MAIN(TestActivitySources)
#include "tst_activitysources.moc"
