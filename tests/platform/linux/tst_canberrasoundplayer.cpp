// The sound player on libcanberra: silence at once without a sound server or with a file it cannot
// play, and, through a private PulseAudio server with a null sink whose monitor is recorded, beeps
// where they are due and a file played whole while the caller waits (real time passes, about 8 s).
#include "platform/linux/CanberraSoundPlayer.h"
#include "support/Programs.h"
#include "support/PulseServer.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace tarvo;

const QString kBeepFile = QStringLiteral(TARVO_PROGRAM_DIR "/beep.wav");

class TestCanberraSoundPlayer : public QObject {
    Q_OBJECT

private:
    PulseServer pulse_;
    bool haveServer_ = false;
    QStringList unplayable_;

private slots:
    void initTestCase() {
        QVERIFY2(QFileInfo(kBeepFile).isFile(), "the build puts the fallback beep in the program folder");
        unplayable_ = {pulse_.filePath("missing.wav"), pulse_.filePath("."), pulse_.filePath("notes.wav"),
                       pulse_.filePath("broken.wav")};
        QVERIFY(writeFile(unplayable_[2], "these are not samples\n"));
        QVERIFY(writeFile(unplayable_[3], QByteArray("RIFF\x24\0\0\0WAVEjunk", 16)));
        haveServer_ = pulse_.start();
    }

    // With no server every kind of path is silence at once. (That a pause takes its time, the beeps
    // through a server show.)
    void withoutAServerEverythingIsSilenceAtOnce() {
        const QByteArray server = qgetenv("PULSE_SERVER");
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(pulse_.filePath("no-server")));
        for (const QString& path : QStringList{kBeepFile} + unplayable_) {
            CanberraSoundPlayer player(kBeepFile); // a fresh one, that has not yet given up on the server
            QElapsedTimer clock;
            clock.start();
            player.playSync(path);
            player.playAsync(path);
            player.beep();
            QVERIFY2(clock.elapsed() < 500, qPrintable(path));
        }
        qputenv("PULSE_SERVER", server);
    }

    // Beeps start when asked for and do not hold the caller; a file played synchronously is heard
    // whole (the bundled 150 ms tone, about 105 ms above a quarter of its peak) while the caller waits;
    // files that cannot play are silence at once, and no beep stands in for them.
    void heardThroughASoundServer() {
        if (!haveServer_)
            QSKIP("pulseaudio is not installed");
        CanberraSoundPlayer player(kBeepFile);
        QList<PulseServer::Sound> sounds;
        qint64 took = pulse_.record(
            [&] {
                for (const int pause : {166, 999, 999}) {
                    player.beep();
                    player.sleep(pause);
                }
            },
            sounds);
        QVERIFY2(took >= 2164 && took < 2164 + 300, QByteArray::number(took));
        QVERIFY2(sounds.size() == 3 && std::abs(sounds[1].startMs - sounds[0].startMs - 166) <= 60 &&
                     std::abs(sounds[2].startMs - sounds[1].startMs - 999) <= 60,
                 qPrintable(PulseServer::describe(sounds)));

        took = pulse_.record([&] { player.playSync(kBeepFile); }, sounds);
        QVERIFY2(took >= 150 && took < 150 + 300, QByteArray::number(took));
        QVERIFY2(sounds.size() == 1 && std::abs(sounds[0].lengthMs() - 105) <= 15,
                 qPrintable(PulseServer::describe(sounds)));

        took = pulse_.record(
            [&] {
                for (const QString& path : unplayable_) {
                    player.playSync(path);
                    player.playAsync(path);
                }
            },
            sounds);
        QVERIFY2(took >= 0 && took < 1000 && sounds.isEmpty(),
                 qPrintable(QString::number(took) + " ms: " + PulseServer::describe(sounds)));
    }
};

QTEST_GUILESS_MAIN(TestCanberraSoundPlayer)
#include "tst_canberrasoundplayer.moc"
