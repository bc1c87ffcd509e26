// Qt hears the keyboard's state only while a window of the program has the focus: a Shift pressed or
// released while the user types elsewhere sends the program nothing, and on the focus's return Qt is
// handed the state as it is, so that keys are read right (a private Xvfb; keys through XTEST with
// xdotool).
#include "platform/linux/XkbStateFollower.h"
#include "support/XvfbServer.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QRasterWindow>
#include <QtTest>

#include <xcb/xcb.h>
#define explicit explicit_ // the XKB header names a field "explicit"
#include <xcb/xkb.h>
#undef explicit

using namespace tarvo;

namespace {

struct KeyWindow : QRasterWindow {
    QString typed;
    void keyPressEvent(QKeyEvent* e) override { typed += e->text(); }
    void paintEvent(QPaintEvent*) override {}
};

// The XKB state notifications that reach Qt, with the modifiers each says are held down.
struct StateNotifications : QAbstractNativeEventFilter {
    int firstXkbEvent = -1;
    QList<int> baseMods;
    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto* e = static_cast<const std::uint8_t*>(message);
        constexpr int kStateNotify = 2, kBaseModsAt = 10;
        if ((e[0] & 0x7f) == firstXkbEvent && e[1] == kStateNotify)
            baseMods << e[kBaseModsAt];
        return false;
    }
};

void xdotool(const QStringList& arguments) {
    QCOMPARE(QProcess::execute(QStringLiteral("xdotool"), arguments), 0);
}

xcb_connection_t* qtConnection() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

// The focus to a window, as a window manager gives it; 0 is the root window, none of the program's.
void focus(WId window) {
    xcb_connection_t* c = qtConnection();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_POINTER_ROOT, window != 0 ? window : root, XCB_CURRENT_TIME);
    xcb_flush(c);
}

} // namespace

class TestXkbStateFollower : public QObject {
    Q_OBJECT

private slots:
    void followsOnlyWithTheFocus() {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            QSKIP("needs Xvfb");
        // XTEST's keyboard, used for the first time, announces itself to every client with its keymap.
        xdotool({"key", "ctrl"});
        KeyWindow window;
        window.resize(100, 100);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        focus(0);
        QTRY_COMPARE(QGuiApplication::applicationState(), Qt::ApplicationInactive);

        const auto follower = XkbStateFollower::attach();
        QVERIFY(follower && !follower->following());
        StateNotifications heard;
        heard.firstXkbEvent = xcb_get_extension_data(qtConnection(), &xcb_xkb_id)->first_event;
        qGuiApp->installNativeEventFilter(&heard);

        constexpr int kShift = 1;
        for (const bool press : {true, false}) {
            xdotool({press ? "keydown" : "keyup", "shift"});
            QTest::qWait(100);
            QCOMPARE(heard.baseMods, QList<int>()); // nothing while unfocused
            focus(window.winId());
            QTRY_VERIFY(follower->following());
            QTRY_COMPARE(heard.baseMods, QList<int>({press ? kShift : 0})); // the state as it is now
            xdotool({"key", "a"});
            QTRY_COMPARE(window.typed, press ? "A" : "Aa");
            focus(0);
            QTRY_VERIFY(!follower->following());
            heard.baseMods.clear();
        }
        qGuiApp->removeNativeEventFilter(&heard);
    }
};

int main(int argc, char** argv) {
    XvfbServer xvfb;
    xvfb.startForQt();
    QGuiApplication app(argc, argv);
    TestXkbStateFollower test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_xkbstatefollower.moc"
