// The tray icon on an X server without a notification area (a private Xvfb): the stand-in window
// serves, clicks on it arrive as the icon's mouse messages, removing the icon hides it, and it does
// not hold up quitting. The icon docking into a real tray, and trays coming and going, are the
// end-to-end test's (e2e_tray_program).
#include "platform/linux/QtTrayIcon.h"
#include "support/XvfbServer.h"

#include <QApplication>
#include <QTimer>
#include <QtTest>

using namespace tarvo;

// Listens to the icon under test, keeping its messages.
class TestQtTrayIcon : public QObject, TrayIcon::Listener {
    Q_OBJECT

    QList<int> received_;
    void trayMessage(int message) override { received_ << message; }

private slots:
    void theStandInServesWithoutATray() {
        if (!XvfbServer::installed())
            QSKIP("Xvfb is not installed");
        QtTrayIcon tray;
        QPixmap teal(22, 22);
        teal.fill(Qt::darkCyan);
        tray.add(QIcon(teal), "Tarvo Micropause", *this);
        QVERIFY(!tray.isEmbedded());
        QWidget* standIn = tray.standInWindow();
        QVERIFY(standIn && QTest::qWaitForWindowExposed(standIn));

        QTest::mouseClick(standIn, Qt::RightButton);
        QTest::mouseClick(standIn, Qt::MiddleButton);
        QTest::mouseClick(standIn, Qt::LeftButton);
        QTest::mouseDClick(standIn, Qt::LeftButton);
        QTRY_VERIFY(received_.size() >= 4);
        QCOMPARE(received_.mid(0, 4), QList<int>({0x205, 0x208, 0x202, 0x203}));

        tray.remove();
        QVERIFY(standIn->isHidden());
        tray.add(QIcon(teal), "Tarvo Micropause", *this);
        QVERIFY(standIn->isVisible());

        // The application closes its windows as it quits; the stand-in must not refuse.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(7); }); // the test's own way out
        QCOMPARE(QApplication::exec(), 0);
    }
};

int main(int argc, char** argv) {
    // The test's own X server, and no session bus, so that Qt offers no StatusNotifierItem tray.
    XvfbServer xvfb;
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/tarvo-test-bus");
    xvfb.startForQt();
    QApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false);
    TestQtTrayIcon test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_qttrayicon.moc"
