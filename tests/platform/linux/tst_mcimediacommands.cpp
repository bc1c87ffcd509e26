// The media commands: the command strings understood (or refused with their error numbers), the
// aliases kept, the helper started on the first video and ended after the last, and one that hangs or
// dies given up without a wait; and, on a private X
// server, the real helper playing a video inside a window of this process, and showing nothing for a
// damaged file or an installation without the AVI demuxer.
#include "platform/linux/MciCommand.h"
#include "platform/linux/MciMediaCommands.h"
#include "support/Programs.h"
#include "support/XvfbServer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
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

// The mapped windows below a window of this process, as the X server sees them.
int mappedChildren(WId window) {
    QProcess xwininfo;
    xwininfo.start("xwininfo", {"-children", "-id", QString::number(window)});
    xwininfo.waitForFinished(5000);
    int mapped = 0;
    for (const QByteArray& line : xwininfo.readAllStandardOutput().split('\n'))
        if (line.trimmed().startsWith("0x")) {
            QProcess info;
            info.start("xwininfo", {"-id", QString::fromLatin1(line.trimmed().split(' ').first())});
            info.waitForFinished(5000);
            mapped += info.readAllStandardOutput().contains("IsViewable") ? 1 : 0;
        }
    return mapped;
}

// A stand-in for the helper: a shell script, run in `dir`.
QString standIn(const QTemporaryDir& dir, const QString& script) {
    const QString path = dir.filePath("helper");
    QFile::remove(path);
    writeFile(path, ("#!/bin/sh\ncd '" + dir.path() + "'\n" + script + "\n").toUtf8());
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
        QCOMPARE(open.file, "/home/my clips/a.avi");
        QCOMPARE(open.device, "TarvoX");
        QVERIFY(open.type == "AVIVideo" && open.parent == 4194305 && open.style == 1073741824);
        QCOMPARE(std::get<MciCommand>(parseMciCommand(u"put tarvox window at 0 0 -1 -1")).window,
                 QRect(0, 0, -1, -1));
        QVERIFY(std::get<MciCommand>(parseMciCommand(u"play tarvox repeat")).repeat);
        QCOMPARE(errorOf(""), mcierr::MissingCommandString);
        QCOMPARE(errorOf("rewind tarvox"), mcierr::UnrecognizedCommand);
        QCOMPARE(errorOf("play tarvox backwards"), mcierr::UnrecognizedKeyword);
        QCOMPARE(errorOf("put tarvox window at 0 0 x 5"), mcierr::BadInteger);
        QCOMPARE(errorOf("put tarvox window at 0 4294967296 5 5"), mcierr::BadInteger); // not wrapped to 0
        // Edges and sizes that QRect would compute past the range of int.
        for (const char* far : {"2147483646 0 2 4", "0 -2147483648 1 0", "5 0 -2147483648 1"})
            QCOMPARE(errorOf(("put tarvox window at " + QByteArray(far)).constData()), mcierr::OutOfRange);
        QCOMPARE(errorOf("open a.avi alias"), mcierr::MissingStringArgument);
        QCOMPARE(errorOf("close"), mcierr::MissingParameter);
    }

    // An alias is opened once; commands for another are refused; a missing file opens nothing. The
    // helper (here a stand-in that answers each line by echoing it) starts with the first video, and is
    // let go soon after the last one closed, without a wait for it to end (this one does not end when
    // its input does).
    void aliasesAndTheHelpersLife() {
        QTemporaryDir dir;
        MciMediaCommands media(standIn(dir, "cat\nexec sleep 60"), 50);
        QCOMPARE(media.send("open \"/nonexistent/a.avi\" alias tarvox"), mcierr::FileNotFound);
        QCOMPARE(media.send("play tarvox"), mcierr::InvalidDeviceName);
        QVERIFY(!media.helperRunning());
        QCOMPARE(media.send("open \"" + kVideo + "\" type AVIVideo alias tarvox parent 0 style 0"), 0);
        QVERIFY(media.helperRunning());
        QCOMPARE(media.send("open \"" + kVideo + "\" alias TARVOX"), mcierr::DuplicateAlias);
        QCOMPARE(media.send("put tarvox window at 0 0 239 179"), 0);
        QCOMPARE(media.send("close tarvox"), 0);
        QCOMPARE(media.send("close tarvox"), mcierr::InvalidDeviceName); // harmless
        QElapsedTimer clock;
        clock.start();
        QTRY_VERIFY(!media.helperRunning());
        QVERIFY(clock.elapsed() < 1000);
        QCOMPARE(MciMediaCommands("/nonexistent/helper").send("open \"" + kVideo + "\" alias v"),
                 mcierr::CannotLoadDriver);
    }

    // A helper that never reads and one that dies cost send() no wait, and the next video nothing: the
    // helper is given up with its video, and the next open starts another, which gets a file name with a
    // line break in it as one line.
    void helpersThatHangOrDie() {
        QTemporaryDir dir;
        const QString broken = dir.filePath("neck\nturn.avi");
        QVERIFY(writeFile(broken, {}));
        for (const char* failure : {"exec sleep 60", "exit 3"}) {
            QFile::remove(dir.filePath("started"));
            QFile::remove(dir.filePath("log"));
            MciMediaCommands media(
                standIn(
                    dir,
                    QStringLiteral("[ -e started ] || { touch started; %1; }\nexec tee -a log").arg(failure)),
                50, 300);
            QElapsedTimer clock;
            clock.start();
            for (const QString& command :
                 {"open \"" + kVideo + "\" alias tarvox", QStringLiteral("put tarvox window at 0 0 9 9"),
                  QStringLiteral("play tarvox repeat")}) {
                QCOMPARE(media.send(command), 0);
                QVERIFY2(clock.restart() < 100, failure);
            }
            QTRY_VERIFY(!media.helperRunning());
            QVERIFY2(clock.elapsed() < 2000, failure);
            QCOMPARE(media.send("play tarvox"), mcierr::InvalidDeviceName); // gone with its helper
            QCOMPARE(media.send("open \"" + broken + "\" alias tarvox"), 0);
            QTRY_VERIFY(readFile(dir.filePath("log")).startsWith("open 2 0 /"));
            QCOMPARE(readFile(dir.filePath("log")).count('\n'), 1);
        }
    }

    // The real helper plays the video inside a window of this process: a child window appears there
    // and its picture changes. A damaged file, and an installation without the AVI demuxer, show
    // nothing, and this process goes on.
    void theHelperPlaysInsideOurWindow() {
        if (!haveX)
            QSKIP("Xvfb is not installed or did not start");
        QWidget host;
        host.setGeometry(0, 0, 400, 300);
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));
        const QString parent = QString::number(host.winId());
        QTemporaryDir dir;
        QVERIFY(writeFile(dir.filePath("damaged.avi"), readFile(kVideo).left(3000)));
        const QString video = dir.filePath("neck turn\n.avi"); // neither blank nor line break splits it
        QVERIFY(QFile::copy(kVideo, video));

        MciMediaCommands media(TARVO_PROGRAM_DIR "/tarvovideo");
        const auto play = [&](MciMediaCommands& player, const QString& file) {
            player.send("open \"" + file + "\" type AVIVideo alias tarvox parent " + parent +
                        " style 1073741824");
            player.send("put tarvox window at 0 0 319 239");
            player.send("play tarvox repeat");
        };
        play(media, video);
        QTRY_COMPARE_WITH_TIMEOUT(mappedChildren(host.winId()), 1, 10000);
        const auto picture = [&] { return host.screen()->grabWindow(0, 0, 0, 319, 239).toImage(); };
        QTRY_VERIFY_WITH_TIMEOUT(picture().pixelColor(160, 120) != QColor(Qt::black), 10000);
        const QImage first = picture();
        QTRY_VERIFY_WITH_TIMEOUT(picture() != first, 5000);
        media.send("close tarvox");
        QTRY_COMPARE(mappedChildren(host.winId()), 0);

        play(media, dir.filePath("damaged.avi"));
        QTest::qWait(1500); // nothing is to appear: give the helper the time a good file needs
        QCOMPARE(mappedChildren(host.winId()), 0);
        media.send("close tarvox");

        // GStreamer with no plugins at all.
        qputenv("GST_PLUGIN_SYSTEM_PATH_1_0", QFile::encodeName(dir.path()));
        qputenv("GST_REGISTRY_1_0", QFile::encodeName(dir.filePath("registry.bin")));
        MciMediaCommands bare(TARVO_PROGRAM_DIR "/tarvovideo");
        play(bare, kVideo);
        QTest::qWait(1500);
        QCOMPARE(mappedChildren(host.winId()), 0);
        QVERIFY(host.isVisible());
    }
};

int main(int argc, char** argv) {
    XvfbServer xvfb;
    haveX = XvfbServer::installed() && !QStandardPaths::findExecutable("xwininfo").isEmpty() && xvfb.start();
    if (haveX) {
        qputenv("DISPLAY", xvfb.display());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    QApplication app(argc, argv);
    TestMciMediaCommands test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mcimediacommands.moc"
