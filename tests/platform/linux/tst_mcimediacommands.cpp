// The media commands: the command strings understood (or refused with their error numbers), the
// aliases kept, the helper started on the first video and let go after the last, one that hangs or dies
// given up, all without a wait; and, on a private X server, the real helper playing a video inside a
// window of this process, and showing nothing for a damaged file. (A helper that crashes, as Qt
// Multimedia does without GStreamer's plugins, shows nothing either: it is a process of its own.)
#include "platform/linux/MciCommand.h"
#include "platform/linux/MciMediaCommands.h"
#include "support/Programs.h"
#include "support/XvfbServer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest>

using namespace tarvo;

namespace {

const QString kVideo = QStringLiteral(TARVO_PROGRAM_DIR "/neckturn.avi");
bool haveX = false;

int errorOf(const char* command) {
    const auto parsed = parseMciCommand(QString::fromLatin1(command));
    return std::holds_alternative<int>(parsed) ? std::get<int>(parsed) : 0;
}

// A stand-in for the helper, run in `dir`: on its first start it runs `first`, then it writes every line
// it reads to "log" and echoes it, which answers it.
QString standIn(const QTemporaryDir& dir, const QString& first) {
    const QString path = dir.filePath("helper");
    for (const char* file : {"helper", "started", "log"})
        QFile::remove(dir.filePath(file));
    writeFile(path, QStringLiteral(
                        "#!/bin/sh\ncd '%1'\n[ -e started ] || { touch started; %2; }\nexec tee -a log\n")
                        .arg(dir.path(), first)
                        .toUtf8());
    QFile(path).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    return path;
}

} // namespace

class TestMciMediaCommands : public QObject {
    Q_OBJECT

private slots:
    void commandStrings() {
        const auto open = std::get<MciCommand>(parseMciCommand(
            u"OPEN \"/home/my clips/a.avi\" type AVIVideo Alias TarvoX parent 4194305 style 1073741824"));
        QVERIFY(open.file == "/home/my clips/a.avi" && open.device == "TarvoX" && open.type == "AVIVideo" &&
                open.parent == 4194305 && open.style == 1073741824);
        QCOMPARE(std::get<MciCommand>(parseMciCommand(u"put tarvox window at 0 0 -1 -1")).window,
                 QRect(0, 0, -1, -1));
        QVERIFY(std::get<MciCommand>(parseMciCommand(u"play tarvox repeat")).repeat);
        using namespace mcierr;
        // The last three: edges and sizes that QRect would compute past the range of int.
        for (const auto& [command, error] : std::initializer_list<std::pair<const char*, int>>{
                 {"", MissingCommandString},
                 {"rewind tarvox", UnrecognizedCommand},
                 {"play tarvox backwards", UnrecognizedKeyword},
                 {"put tarvox window at 0 0 x 5", BadInteger},
                 {"put tarvox window at 0 4294967296 5 5", BadInteger},
                 {"open a.avi alias", MissingStringArgument},
                 {"close", MissingParameter},
                 {"put tarvox window at 2147483646 0 2 4", OutOfRange},
                 {"put tarvox window at 0 -2147483648 1 0", OutOfRange},
                 {"put tarvox window at 5 0 -2147483648 1", OutOfRange}})
            QVERIFY2(errorOf(command) == error, command);
    }

    // The helper (a stand-in here) starts with the first video at no wait, and is let go at no wait
    // either: soon after its last video closed (the first stand-in does not end when its input does),
    // or with its video when it never reads (the second) or dies (the third). The next open starts
    // another, which gets a file name with a line break in it as one line. An alias is opened once;
    // commands for another are refused; a missing file or helper opens nothing.
    void theHelpersLife() {
        QTemporaryDir dir, files;
        const QString broken = files.filePath("neck\nturn.avi");
        QVERIFY(writeFile(broken, {}));
        for (const char* first : {"cat; exec sleep 60", "exec sleep 60", "exit 3"}) {
            MciMediaCommands media(standIn(dir, first), 50, 300);
            QCOMPARE(media.send("open \"/nonexistent/a.avi\" alias tarvox"), mcierr::FileNotFound);
            QVERIFY(!media.helperRunning());
            QElapsedTimer clock;
            clock.start();
            QCOMPARE(media.send("open \"" + kVideo + "\" type AVIVideo alias tarvox parent 0 style 0"), 0);
            QVERIFY2(media.helperRunning() && clock.restart() < 100, first);
            QCOMPARE(media.send("open \"" + kVideo + "\" alias TARVOX"), mcierr::DuplicateAlias);
            if (first[0] == 'c')
                QVERIFY(media.send("close tarvox") == 0 &&
                        media.send("close tarvox") == mcierr::InvalidDeviceName);
            QTRY_VERIFY(!media.helperRunning());
            QVERIFY2(clock.elapsed() < 1000, first);
            QCOMPARE(media.send("play tarvox"), mcierr::InvalidDeviceName); // closed, or gone with its helper
            QCOMPARE(media.send("open \"" + broken + "\" alias tarvox"), 0);
            QTRY_VERIFY(readFile(dir.filePath("log")).startsWith("open 2 0 /"));
            QCOMPARE(readFile(dir.filePath("log")).count('\n'), 1);
        }
        QCOMPARE(MciMediaCommands("/nonexistent/helper").send("open \"" + kVideo + "\" alias v"),
                 mcierr::CannotLoadDriver);
    }

    // The real helper plays the video inside a window of this process, and takes it away on close. A
    // damaged file shows nothing.
    void theHelperPlaysInsideOurWindow() {
        if (!haveX)
            QSKIP("Xvfb is not installed or did not start");
        QWidget host;
        host.setGeometry(0, 0, 400, 300);
        host.setStyleSheet("background: magenta");
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));
        QTemporaryDir dir;
        QVERIFY(writeFile(dir.filePath("damaged.avi"), readFile(kVideo).left(3000)));
        const QString video = dir.filePath("neck turn\n.avi"); // neither blank nor line break splits it
        QVERIFY(QFile::copy(kVideo, video));
        MciMediaCommands media(TARVO_PROGRAM_DIR "/tarvovideo");
        const auto play = [&](const QString& file) {
            media.send("open \"" + file + "\" type AVIVideo alias tarvox parent " +
                       QString::number(host.winId()) + " style 1073741824");
            media.send("put tarvox window at 0 0 319 239");
            media.send("play tarvox repeat");
        };
        // What the screen shows in the middle of the video's place: magenta where no video window is.
        const auto shown = [&] {
            return host.screen()->grabWindow(0, 0, 0, 319, 239).toImage().pixelColor(160, 120);
        };
        QCOMPARE(shown(), QColor(Qt::magenta));
        play(video);
        QTRY_VERIFY_WITH_TIMEOUT(shown() != QColor(Qt::magenta) && shown() != QColor(Qt::black), 10000);
        media.send("close tarvox");
        QTRY_COMPARE(shown(), QColor(Qt::magenta));

        play(dir.filePath("damaged.avi"));
        QTest::qWait(1500); // nothing is to appear: give the helper the time a good file needs
        QCOMPARE(shown(), QColor(Qt::magenta));
    }
};

int main(int argc, char** argv) {
    XvfbServer xvfb;
    haveX = xvfb.startForQt();
    QApplication app(argc, argv);
    TestMciMediaCommands test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mcimediacommands.moc"
