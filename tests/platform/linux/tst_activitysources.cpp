// Where activity comes from: the X11 activity monitor against a private Xvfb with input from xdotool
// (XTEST); GNOME's idle monitor (against a stand-in on a private session bus) and the compositor's idle
// notification (against a stand-in compositor); which source a session gets, and a source that is lost
// on the way, replaced by another or by the user counted as always active.
#include "MutterStandIn.h"
#include "platform/fake/FakeClock.h"
#include "platform/linux/ActivityMonitorFactory.h"
#include "platform/linux/ExtIdleNotifyMonitor.h"
#include "platform/linux/MutterIdleMonitor.h"
#include "platform/linux/SessionPlatform.h"
#include "platform/linux/X11ActivityMonitor.h"
#include "support/XvfbServer.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace tarvo;

class TestActivitySources : public QObject {
    Q_OBJECT

private:
    QProcess bus_;
    std::unique_ptr<MutterStandIn> mutter_;
    XvfbServer xvfb_;
    QTemporaryDir runtimeDir_;
    // The stand-in compositor (idle_compositor) on a socket in $XDG_RUNTIME_DIR.
    const QByteArray compositorName_ = "tarvo-idle-test";
    QProcess compositor_;

    // Runs xdotool with space-separated arguments on a display (the test's own unless told) while the
    // event loop runs, so that a monitor sees the events as they come, as it would in the program.
    void xdotool(const QString& arguments, const QByteArray& display = {}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", QString::fromLatin1(display.isEmpty() ? xvfb_.display() : display));
        process.setProcessEnvironment(environment);
        process.start("xdotool", arguments.split(u' '));
        QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 10000);
        QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
    }
    bool startCompositor() {
        compositor_.start(QCoreApplication::applicationDirPath() + "/idle_compositor",
                          {QString::fromLatin1(compositorName_)});
        return compositor_.waitForReadyRead(10000) && compositor_.readLine().trimmed() == "ready";
    }
    // Plays the user to the stand-in compositor ("input", or "idle <ms>"); its answer: the events it
    // has sent so far, the notification objects in place, and the input-idle ones asked for.
    QList<int> tellCompositor(const QByteArray& command) {
        compositor_.write(command + '\n');
        while (!compositor_.canReadLine() && compositor_.waitForReadyRead(10000)) {
        }
        const QList<QByteArray> words = compositor_.readLine().trimmed().split(' ');
        return {words.value(0).toInt(), words.value(1).toInt(), words.value(2).toInt()};
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
        QVERIFY2(startCompositor(), "the stand-in compositor did not start");
        qunsetenv("WAYLAND_DISPLAY");
        qunsetenv("XDG_SESSION_TYPE");
    }
    void cleanupTestCase() {
        compositor_.closeWriteChannel(); // it ends with its input
        compositor_.waitForFinished(10000);
        mutter_.reset();
        bus_.kill();
        bus_.waitForFinished();
    }
    void cleanup() { mutter_->leave(); }

    // A key stamps channel 0 and relative motion channel 1, each with the tick count of the moment and
    // only its own. A channel that is off is not even selected (motion before a key reaches nothing) and
    // keeps its stamp. Between two looks a channel takes its first event and only what was already on
    // its way; after a look it is heard again, and an event in the very millisecond of the look still
    // makes the stamp grow, or a moving mouse would pass for a natural pause.
    void x11ChannelsTakeOneEventPerLook() {
        FakeClock clock(123456);
        auto monitor = X11ActivityMonitor::open(xvfb_.display(), nullptr, &clock);
        QVERIFY(monitor);
        monitor->InstallFilter(0, true);
        xdotool("mousemove_relative 3 3 key a");
        QTRY_COMPARE_WITH_TIMEOUT(monitor->VexGetTime(0), 123456, 3000);
        QCOMPARE(monitor->VexGetTime(1), 0);
        QCOMPARE(monitor->eventsReceived(), std::uint64_t(1));
        monitor->InstallFilter(1, true);
        xdotool("key b");
        QTRY_COMPARE_WITH_TIMEOUT(monitor->VexGetTime(0), 123457, 3000);
        QCOMPARE(monitor->VexGetTime(1), 0);

        clock.advance(1000);
        QStringList burst; // twenty keys and twenty motions with nobody looking
        for (int i = 0; i < 20; ++i)
            burst << QStringLiteral("key a mousemove_relative -- %1 0 sleep 0.02").arg(i % 2 ? -2 : 2);
        const std::uint64_t before = monitor->eventsReceived();
        xdotool(burst.join(u' '));
        QTest::qWait(100); // anything still on its way arrives now
        const std::uint64_t received = monitor->eventsReceived() - before;
        QVERIFY2(received >= 2 && received <= 12, QByteArray::number(static_cast<qulonglong>(received)));
        QCOMPARE(monitor->VexGetTime(0), 124456);
        QCOMPARE(monitor->VexGetTime(1), 124456);

        monitor->InstallFilter(0, false);
        clock.advance(1000);
        xdotool("key a mousemove_relative 7 5");
        QTRY_COMPARE_WITH_TIMEOUT(monitor->VexGetTime(1), 125456, 3000);
        QCOMPARE(monitor->VexGetTime(0), 124456);
    }

    // The scheduler's question at each look, whether a stamp grew since the previous look, answered
    // from GNOME's idle monitor and from the compositor's idle notification, for one user: input is
    // activity exactly when it came after the previous look, and notifications pass only when the user
    // stops or comes back, never while they work or are away. Keyboard and mouse are not told apart; a
    // channel that is off keeps its stamp; both off, the watches go; and each is lost when its service
    // goes.
    void idleSourcesShowInputSinceTheLastLook() {
        QVERIFY(mutter_->enter());
        FakeClock clock(100000);
        MutterIdleMonitor gnome(QDBusConnection::sessionBus(), clock);
        const auto wayland = ExtIdleNotifyMonitor::open(compositorName_, clock, nullptr);
        QVERIFY(wayland);
        IdleNotificationMonitor* const monitors[] = {&gnome, wayland.get()};
        for (IdleNotificationMonitor* monitor : monitors) {
            monitor->InstallFilter(0, true);
            monitor->InstallFilter(1, true);
        }
        QTRY_COMPARE(mutter_->watches(true), 1);
        QTRY_COMPARE(tellCompositor("idle 0").value(1), 1);
        QCOMPARE(tellCompositor("idle 0").value(2), 1); // version 2: input alone, not idle inhibitors
        int sent = 0;
        const auto tell = [&](int idleMs) { // 0: input
            idleMs ? mutter_->idleFor(quint64(idleMs)) : mutter_->input();
            sent = tellCompositor(idleMs ? "idle " + QByteArray::number(idleMs) : "input").value(0);
            QTRY_COMPARE(gnome.firings(), std::uint64_t(mutter_->firings()));
            QTRY_COMPARE(wayland->notifications(), std::uint64_t(sent));
            // once idle, GNOME's user-active watch is in place before the next input
            QTRY_COMPARE(mutter_->watches(false),
                         mutter_->idle() >= IdleNotificationMonitor::kIdleAfter ? 1 : 0);
        };
        // What the user does before each look: "i" input, "q<ms>" nothing for so long; the clock moves along.
        struct {
            const char* steps;
            bool grew;
            std::uint64_t heard; // so far
        } const looks[] = {
            {"i q300 i q300 i q300 i q300 i q300 i q300 i q300 i q300 i q300 i q300", true, 0},
            {"q5000", false, 1}, // the last input came just before the previous look
            {"q5000", false, 1},
            {"q1000 i q4000", true, 3},
            {"i q1000", true, 4},
            {"q2500 i q500", true, 6},
        };
        std::array<std::int32_t, 2> last{clock.tickCount(), clock.tickCount()};
        int idle = 0;
        for (const auto& look : looks) {
            for (const QString& step : QString::fromLatin1(look.steps).split(u' ')) {
                if (step == QLatin1String("i")) {
                    idle = 0;
                    tell(0);
                }
                // Nothing for a while: the clock stops when the idle notification is due, until it is heard.
                for (int quiet = step.mid(1).toInt(); quiet > 0;) {
                    const int toIdle = IdleNotificationMonitor::kIdleAfter - idle;
                    const int span = toIdle > 0 ? std::min(quiet, toIdle) : quiet;
                    clock.advance(span);
                    tell(span);
                    idle += span;
                    quiet -= span;
                }
            }
            for (size_t m = 0; m < 2; ++m) {
                const std::int32_t stamp = monitors[m]->VexGetTime(0);
                QCOMPARE(monitors[m]->VexGetTime(1), stamp);
                QVERIFY2((stamp > last[m]) == look.grew, look.steps);
                last[m] = stamp;
            }
            QCOMPARE(gnome.firings(), look.heard);
            QCOMPARE(wayland->notifications(), look.heard);
        }
        clock.advance(5000);
        for (size_t m = 0; m < 2; ++m) {
            monitors[m]->InstallFilter(1, false);
            QCOMPARE(monitors[m]->VexGetTime(1), last[m]);
            monitors[m]->InstallFilter(0, false);
        }
        QTRY_COMPARE(mutter_->watches(true) + mutter_->watches(false), 0);
        QTRY_COMPARE(tellCompositor("idle 0").value(1), 0);
        QVERIFY(gnome.lostReason().isEmpty() && wayland->lostReason().isEmpty());
        mutter_->leave();
        compositor_.closeWriteChannel();
        QTRY_COMPARE(gnome.lostReason(), "GNOME's idle monitor has left the session bus");
        QTRY_COMPARE(wayland->lostReason(), "the connection to the Wayland compositor was lost");
        compositor_.waitForFinished(10000);
        QVERIFY(startCompositor());
    }

    // X11 where Qt runs on an X11 display; where X11 cannot see the input the compositor's idle
    // notification, else GNOME's idle monitor; otherwise the user counts as always active, with the
    // reason in the status.
    // A user away already when watching starts, whose idle watch's firing is handed on before the
    // watch's number: the firing still counts, though the service never fires that watch again while
    // the user stays away.
    void anEarlyFiringCounts() {
        QVERIFY(mutter_->enter());
        mutter_->input();
        mutter_->idleFor(60000);
        mutter_->fireBeforeAnswer = true;
        FakeClock clock(100000);
        MutterIdleMonitor gnome(QDBusConnection::sessionBus(), clock);
        gnome.InstallFilter(0, true);
        QTRY_COMPARE(mutter_->watches(false), 1); // the user-active watch asked for: taken as idle
        const std::int32_t stamp = gnome.VexGetTime(0);
        clock.advance(5000);
        QCOMPARE(gnome.VexGetTime(0), stamp);
        QCOMPARE(gnome.firings(), std::uint64_t(1));
        mutter_->fireBeforeAnswer = false;
        mutter_->input();
    }

    void theSessionDecidesTheSource() {
        FakeClock clock;
        const QString x11 = "Natural pauses are detected from the keyboard and mouse of the X11 display.";
        const QString compositor =
            "Natural pauses are detected through the compositor's idle notification (ext-idle-notify-v1).";
        const QString gnome = "Natural pauses are detected through GNOME's idle monitor.";
        const QString none = "Natural pauses are not detected here: ";
        const QString noIdleProtocol = none + "this is a Wayland session whose compositor offers neither "
                                              "ext-idle-notify-v1 nor GNOME's idle monitor";
        struct {
            const char* platform;
            QByteArray display;
            const char* wayland;
            bool gnome;
            QString description;
        } const cases[] = {
            {"xcb", xvfb_.display(), "", true, x11},
            {"wayland", xvfb_.display(), compositorName_.constData(), true, compositor},
            {"wayland", xvfb_.display(), "", true, gnome},
            {"xcb", xvfb_.display(), "wayland-0", true, gnome},
            {"xcb", QByteArray(), "", false, none + "there is no X11 display (DISPLAY is not set)."},
            {"xcb", xvfb_.display(), "wayland-0", false,
             noIdleProtocol + " (and its X11 server sees only input to X11 windows)."},
            {"wayland", xvfb_.display(), "", false, noIdleProtocol + "."},
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
            QVERIFY(c.gnome ? mutter_->enter() : (mutter_->leave(), true));
            const auto monitor =
                createActivityMonitor({QString::fromLatin1(c.platform), QByteArray(), QByteArray(), clock});
            QCOMPARE(monitor->description(), c.description);
        }
        qunsetenv("WAYLAND_DISPLAY");
        qputenv("DISPLAY", xvfb_.display());
    }

    // Windows go through XWayland where a Wayland session offers X11; the user's own choice stands.
    void aWaylandSessionWithX11ChoosesXWayland() {
        QCOMPARE(qtPlatformForSession({"", "", ":1", "wayland"}), "xcb");
        QCOMPARE(qtPlatformForSession({"", "wayland-0", ":1", ""}), "xcb");
        for (const SessionEnvironment& kept : {SessionEnvironment{"wayland", "wayland-0", ":1", "wayland"},
                                               {"", "wayland-0", "", "wayland"},
                                               {"", "", ":1", "x11"}})
            QCOMPARE(qtPlatformForSession(kept), QByteArray());
    }

    // A lost X11 connection is made again when the display is back, and otherwise gives way to the user
    // counted as always active, who says why once on standard error. The look that finds a source lost
    // counts as activity, never as a natural pause, and so does every look after it; a channel that is
    // off keeps its stamp.
    void aLostSourceIsReplaced() {
        char* said = nullptr;
        size_t size = 0;
        std::FILE* messages = open_memstream(&said, &size);
        FakeClock clock(50000);
        auto display = std::make_unique<XvfbServer>();
        QVERIFY(display->start());
        const QByteArray name = display->display();
        const auto monitor = createActivityMonitor({"xcb", name, QByteArray(), clock, messages});
        monitor->InstallFilter(0, true);
        monitor->InstallFilter(1, true);
        const QString x11 = monitor->description();

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
        monitor->InstallFilter(1, false);
        const std::int32_t mouse = monitor->VexGetTime(1);
        for (int look = 0; look < 2; ++look) {
            clock.advance(3000);
            QCOMPARE(monitor->VexGetTime(0), clock.tickCount());
        }
        QCOMPARE(monitor->VexGetTime(1), mouse);
        const QString lost = QStringLiteral("the connection to the X11 display \"%1\" was lost").arg(name);
        QCOMPARE(monitor->description(), "Natural pauses are not detected here: " + lost + ".");
        std::fflush(messages);
        QCOMPARE(QString::fromLocal8Bit(said, qsizetype(size)),
                 "Tarvo Micropause: " + lost + ". " + x11 +
                     "\nTarvo Micropause: natural pauses cannot be detected here, because " + lost +
                     "; keyboard and mouse activity is not watched.\n");
        std::fclose(messages);
        std::free(said);
    }
};

QTEST_GUILESS_MAIN(TestActivitySources)
#include "tst_activitysources.moc"
