// Where the program learns that the person is away or busy: logind on a private system bus, the
// notification server, GNOME's session manager and the desktop portal on a private session bus
// (stand-ins that also send wrong types, do not know the session, leave and come back), and the X11
// window manager's full-screen state under openbox on a private Xvfb. (The screen saver: the end-to-end
// test.)
#include "BusStandIn.h"
#include "platform/linux/DesktopPresence.h"
#include "platform/linux/X11FullScreenWatcher.h"
#include "support/XvfbServer.h"

#include <QDBusObjectPath>
#include <QGuiApplication>
#include <QProcess>
#include <QTest>
#include <QWindow>

using namespace tarvo;

namespace {

QByteArray startBus(QProcess& bus) {
    bus.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    return bus.waitForReadyRead(10000) ? bus.readLine().trimmed() : QByteArray();
}

} // namespace

class TestPresenceSources : public QObject {
    Q_OBJECT

private:
    QProcess sessionBus_, systemBus_;
    QString session_, system_;

private slots:
    void initTestCase() {
        if (QStandardPaths::findExecutable("dbus-daemon").isEmpty())
            QSKIP("dbus-daemon is not installed");
        session_ = QString::fromLatin1(startBus(sessionBus_));
        system_ = QString::fromLatin1(startBus(systemBus_));
        QVERIFY(!session_.isEmpty() && !system_.isEmpty());
    }
    void cleanupTestCase() {
        for (QProcess* bus : {&sessionBus_, &systemBus_})
            bus->kill(), bus->waitForFinished();
    }

    void busSources() {
        const QString session = "/session/_32";
        BusStandIn logind(system_, "org.freedesktop.login1", "/org/freedesktop/login1");
        logind.answers["GetSession"] =
            QVariant::fromValue(QDBusObjectPath("/org/freedesktop/login1" + session));
        logind.answers["org.freedesktop.login1.Session.LockedHint"] = true;
        BusStandIn notifications(session_, "org.freedesktop.Notifications", "/org/freedesktop/Notifications");
        notifications.answers["org.freedesktop.Notifications.Inhibited"] = false;
        BusStandIn gnome(session_, "org.gnome.SessionManager", "/org/gnome/SessionManager");
        gnome.answers["org.gnome.SessionManager.InhibitedActions"] = 4u; // suspend only, not idle
        BusStandIn portal(session_, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop");
        portal.answers["Read"] = QVariant::fromValue(QDBusVariant(false)); // GNOME's banners hidden

        const auto sessionBus = QDBusConnection::connectToBus(session_, "program-session");
        const auto systemBus = QDBusConnection::connectToBus(system_, "program-system");
        qputenv("XDG_SESSION_ID", "2");
        DesktopPresence presence(sessionBus, systemBus, false);
        QCOMPARE(presence.report(),
                 "tarvo: presence followed through logind, the notification server, GNOME's "
                 "session manager, the desktop portal");
        QTRY_VERIFY(presence.holds(PresenceCondition::Locked)); // logind's hint, read at start
        logind.change("org.freedesktop.login1.Session", "LockedHint", false, session);
        QTRY_VERIFY(!presence.holds(PresenceCondition::Locked));

        gnome.change("org.gnome.SessionManager", "InhibitedActions", 8u | 4u);
        QTRY_VERIFY(presence.holds(PresenceCondition::IdleInhibited));
        gnome.change("org.gnome.SessionManager", "InhibitedActions", 4u);
        QTRY_VERIFY(!presence.holds(PresenceCondition::IdleInhibited));
        gnome.change("org.gnome.SessionManager", "InhibitedActions", 8u);
        QTRY_VERIFY(presence.holds(PresenceCondition::IdleInhibited));
        gnome.change("org.gnome.SessionManager", "InhibitedActions", 8); // signed: the wrong type
        QTRY_VERIFY(!presence.holds(PresenceCondition::IdleInhibited));

        QTRY_VERIFY(presence.holds(PresenceCondition::DoNotDisturb)); // as read at start
        portal.emitSignal(
            "org.freedesktop.portal.Settings", "SettingChanged",
            {"org.gnome.desktop.notifications", "show-banners", QVariant::fromValue(QDBusVariant(true))});
        QTRY_VERIFY(!presence.holds(PresenceCondition::DoNotDisturb));
        notifications.change("org.freedesktop.Notifications", "Inhibited", true);
        QTRY_VERIFY(presence.holds(PresenceCondition::DoNotDisturb));
        // The notification server restarts: gone, nothing holds; back, it is followed again.
        QVERIFY(notifications.leave());
        QTRY_VERIFY(!presence.holds(PresenceCondition::DoNotDisturb));
        QVERIFY(notifications.enter());
        QTRY_VERIFY(presence.holds(PresenceCondition::DoNotDisturb));
        notifications.change("org.freedesktop.Notifications", "Inhibited", QString("true")); // wrong type
        QTRY_VERIFY(!presence.holds(PresenceCondition::DoNotDisturb));
        // Back once more, it turns do-not-disturb on just after its reading was answered with "off",
        // and the client hears the change first: the change stands.
        QVERIFY(notifications.leave());
        notifications.answers["org.freedesktop.Notifications.Inhibited"] = false;
        notifications.beforeAnswer = [&] {
            notifications.change("org.freedesktop.Notifications", "Inhibited", true);
        };
        QVERIFY(notifications.enter());
        QTRY_VERIFY(!notifications.beforeAnswer);
        sessionBus.call(QDBusMessage::createMethodCall("org.freedesktop.Notifications",
                                                       "/org/freedesktop/Notifications", "", "Ping"),
                        QDBus::BlockWithGui); // after the answer: both have reached the program
        QCoreApplication::processEvents();
        QVERIFY(presence.holds(PresenceCondition::DoNotDisturb));

        // A session that logind does not know: its lock is never seen; the system bus going away
        // altogether is no harm either.
        qputenv("XDG_SESSION_ID", "99");
        logind.answers.erase("GetSession");
        DesktopPresence unknown(sessionBus, systemBus, false);
        logind.change("org.freedesktop.login1.Session", "LockedHint", true, session);
        QTRY_VERIFY(presence.holds(PresenceCondition::Locked)); // after logind's answer to `unknown`
        QVERIFY(!unknown.holds(PresenceCondition::Locked));
        systemBus_.kill(), systemBus_.waitForFinished();
        QTRY_VERIFY(!presence.holds(PresenceCondition::Locked));
    }

    // A real window put full screen and back through openbox, followed on the application's own
    // connection; an inactive window's changes do not reach the program.
    void x11FullScreen() {
        for (const char* tool : {"openbox", "xmessage", "wmctrl", "xdotool"})
            if (QStandardPaths::findExecutable(tool).isEmpty())
                QSKIP("a tool of the X11 test is not installed");
        auto watcher = X11FullScreenWatcher::attach([] {});
        if (!watcher)
            QSKIP("the test's X server did not start");
        const auto run = [](const QString& command) { return QProcess::execute("sh", {"-c", command}) == 0; };
        QProcess wm, work, other;
        wm.start("openbox", {});
        QTRY_VERIFY_WITH_TIMEOUT(run("wmctrl -m >/dev/null 2>&1"), 10000);
        work.start("xmessage", {"-title", "Work", "Work"});
        other.start("xmessage", {"-title", "Other", "Other"});
        // Openbox now and then leaves a window mapped early in its life unmanaged; mapped again, it is
        // taken on.
        const QString managed = "wmctrl -l | grep -q Work && wmctrl -l | grep -q Other";
        for (int attempt = 0; attempt < 3 && !QTest::qWaitFor([&] { return run(managed); }, 5000); ++attempt)
            run("for w in $(xdotool search --name '^(Work|Other)$'); do xdotool windowunmap $w windowmap $w; "
                "done");
        QVERIFY(run(managed));
        QVERIFY(run("wmctrl -a Work && wmctrl -r Work -b add,fullscreen"));
        QTRY_VERIFY(watcher->fullScreen());
        QVERIFY(run("wmctrl -a Other")); // another window takes the focus
        QTRY_VERIFY(!watcher->fullScreen());
        QVERIFY(run("wmctrl -a Work"));
        QTRY_VERIFY(watcher->fullScreen());
        // Twenty changes of the window that is no longer active reach nothing: what arrives is the active
        // window leaving full screen (seen after them, as the server sends in order).
        const std::uint64_t notifications = watcher->foreignNotifications();
        QVERIFY(run("for i in $(seq 20); do wmctrl -r Other -N Other; done"));
        QVERIFY(run("wmctrl -r Work -b remove,fullscreen"));
        QTRY_VERIFY(!watcher->fullScreen());
        QVERIFY2(watcher->foreignNotifications() - notifications < 20,
                 QByteArray::number(watcher->foreignNotifications() - notifications));
        // The program's own window, active and full screen, counts as well, and following it leaves
        // Qt's own choice of its events alone.
        QWindow own;
        own.resize(200, 100);
        own.showFullScreen();
        QTRY_VERIFY(own.isActive());
        QTRY_VERIFY(watcher->fullScreen());
        own.showNormal();
        QTRY_VERIFY(own.width() == 200 && !watcher->fullScreen()); // Qt heard its window shrink
        for (QProcess* p : {&other, &work, &wm})
            p->kill(), p->waitForFinished();
    }
};

int main(int argc, char** argv) {
    XvfbServer xvfb; // the X11 part follows the application's own display
    xvfb.startForQt();
    QGuiApplication app(argc, argv);
    TestPresenceSources test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_presencesources.moc"
