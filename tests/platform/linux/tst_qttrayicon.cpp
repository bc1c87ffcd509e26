// The tray icon on a real X server (a private Xvfb): the stand-in window while there is no tray, the
// icon docking into trayer when it starts, the stand-in coming back when trayer ends, and clicks on
// either reaching the program as mouse messages. Input comes from xdotool, through the X server.
#include "platform/linux/QtTrayIcon.h"
#include "support/XvfbServer.h"

#include <QApplication>
#include <QProcess>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QtTest>

#include <cstdlib>
#include <xcb/xcb.h>

using namespace tarvo;

namespace {

bool haveX = false;

// Notes the icon's mouse messages.
struct Messages : TrayIcon::Listener {
    QList<int> received;
    void trayMessage(int message) override { received << message; }
};

} // namespace

class TestQtTrayIcon : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        if (!haveX)
            QSKIP("Xvfb is not installed or did not start");
        if (QStandardPaths::findExecutable("xdotool").isEmpty())
            QSKIP("xdotool is not installed");
    }

    void init() {
        messages_.received.clear();
        tray_ = std::make_unique<QtTrayIcon>();
    }

    void cleanup() {
        tray_.reset();
        stopTrayer();
    }

    // Without a tray the stand-in window serves; the icon and the stand-in change places as trays come
    // and go, and clicks on either arrive as messages. A removed icon stays away whatever trays do.
    // (Docking and the right click on the docked icon are also what the end-to-end test checks.)
    void theIconFollowsTheTray() {
        add();
        QSignalSpy embedded(tray_.get(), &QtTrayIcon::embeddedChanged);
        for (int round = 0; round < 2; ++round) {
            QVERIFY(!tray_->isEmbedded());
            QWidget* standIn = tray_->standInWindow();
            QVERIFY(QTest::qWaitForWindowExposed(standIn));
            if (round == 0) {
                QCOMPARE(standIn->windowTitle(), "Tarvo Micropause");
                clickAll(standIn->mapToGlobal(standIn->rect().center()));
            }

            startTrayer();
            QTRY_VERIFY_WITH_TIMEOUT(tray_->isEmbedded(), 10000);
            QVERIFY(standIn->isHidden());
            auto* icon = tray_->findChild<QSystemTrayIcon*>();
            QCOMPARE(icon->toolTip(), "Tarvo Micropause");
            // Docked: trayer sits at the top right corner of the 640 x 480 screen.
            QTRY_VERIFY(icon->geometry().left() > 400 && icon->geometry().top() < 40);
            clickAll(icon->geometry().center());
            stopTrayer();
            QTRY_VERIFY(!tray_->isEmbedded());
        }
        QCOMPARE(embedded.size(), 4);
        QVERIFY(QTest::qWaitForWindowExposed(tray_->standInWindow()));

        tray_->remove();
        QVERIFY(tray_->standInWindow()->isHidden());
        startTrayer();
        // Once Qt has seen the tray's announcement, whatever it set off has been handled: nothing.
        QTRY_VERIFY(QSystemTrayIcon::isSystemTrayAvailable());
        QCoreApplication::processEvents();
        QVERIFY(!tray_->isEmbedded());
        QVERIFY(!tray_->findChild<QSystemTrayIcon*>()->isVisible());
        QVERIFY(tray_->standInWindow()->isHidden());
    }

    // The application closes its windows as it quits; the stand-in must not refuse.
    void theStandInDoesNotHoldUpQuitting() {
        add();
        QVERIFY(QTest::qWaitForWindowExposed(tray_->standInWindow()));
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(7); }); // the test's own way out
        QCOMPARE(QApplication::exec(), 0);
    }

private:
    void add() {
        QPixmap teal(22, 22);
        teal.fill(Qt::darkCyan);
        tray_->add(QIcon(teal), "Tarvo Micropause", messages_);
    }

    void startTrayer() {
        trayer_.setStandardErrorFile(QProcess::nullDevice());
        trayer_.start("trayer", {"--edge", "top", "--align", "right", "--widthtype", "request", "--height",
                                 "24", "--transparent", "false", "--SetDockType", "false"});
        QVERIFY(trayer_.waitForStarted());
    }

    void stopTrayer() {
        if (trayer_.state() == QProcess::NotRunning)
            return;
        trayer_.kill();
        trayer_.waitForFinished();
        // Qt keeps the tray's window for the whole process and forgets it only when it handles the
        // window's destruction; the next test must not start before that.
        QTRY_VERIFY(!QSystemTrayIcon::isSystemTrayAvailable());
    }

    // A right, a middle and a double left click at `where`, through the X server, arrive as messages
    // (the stand-in also reports the double click's second release).
    void clickAll(const QPoint& where) {
        messages_.received.clear();
        QProcess xdotool;
        xdotool.start("xdotool",
                      QStringList{"mousemove", QString::number(where.x()), QString::number(where.y())} +
                          QString("sleep 0.1 click 3 sleep 0.1 click 2 sleep 0.1 click --repeat 2 "
                                  "--delay 80 1")
                              .split(' '));
        QTRY_VERIFY(xdotool.state() == QProcess::NotRunning);
        QCOMPARE(xdotool.exitCode(), 0);
        QTRY_VERIFY(messages_.received.size() >= 4);
        QCOMPARE(messages_.received.mid(0, 4), QList<int>({0x205, 0x208, 0x202, 0x203}));
    }

    std::unique_ptr<QtTrayIcon> tray_;
    QProcess trayer_;
    Messages messages_;
};

int main(int argc, char** argv) {
    // The test's own X server, and no session bus, so that Qt offers no StatusNotifierItem tray: the
    // XEmbed tray is what this test is about.
    XvfbServer xvfb;
    haveX = XvfbServer::installed() && xvfb.start();
    if (haveX) {
        qputenv("DISPLAY", xvfb.display());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/tarvo-test-bus");
    QApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false);
    TestQtTrayIcon test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_qttrayicon.moc"
