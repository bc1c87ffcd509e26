// The shared controls: the media procedures' exact commands and pictures on a media surface, the
// monitor a window is on, the button bar's handlers, and the up-down spinner beside its text field.
#include "controls/ExerciseMedia.h"
#include "controls/MMControl.h"
#include "controls/MediaSurface.h"
#include "controls/ScreenCovers.h"
#include "controls/UpDown.h"
#include "platform/fake/RecordingMediaCommands.h"
#include "support/Programs.h"

#include <QLineEdit>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace tarvo;

class TestControls : public QObject {
    Q_OBJECT

private slots:
    // Each size index opens the one alias at its size inside the surface, after closing whatever was
    // open; a name without a folder lies in the program folder, one with a folder is taken as it is, and
    // a name goes in as written, "%2" and all.
    void videoCommands() {
        RecordingMediaCommands commands;
        ExerciseMedia media(commands, "/opt/tarvo");
        MediaSurface surface;
        const QString parent = QString::number(surface.handle());
        const std::tuple<int, int, int> sizes[] = {{0, 239, 179}, {1, 319, 239}, {2, 479, 359},
                                                   {3, 639, 479}, {4, 959, 719}, {7, -1, -1}};
        for (const auto& [index, w, h] : sizes) {
            commands.clear();
            media.OpenVideo(surface, "neck%2turn.avi", index);
            QCOMPARE(commands.commands(),
                     QStringList({"close tarvox",
                                  "open \"/opt/tarvo/neck%2turn.avi\" type AVIVideo alias tarvox parent " +
                                      parent + " style 1073741824",
                                  QStringLiteral("put tarvox window at 0 0 %1 %2").arg(w).arg(h)}));
            QCOMPARE(surface.size(), QSize(std::max(w, 0), std::max(h, 0)));
        }
        QCOMPARE(media.mediaFile("clips/a.avi"), "clips/a.avi");
        QCOMPARE(media.mediaFile("C:\\Media\\a.avi"), "C:\\Media\\a.avi");
        commands.clear();
        media.PlayVideo();
        media.CloseVideo();
        QCOMPARE(commands.commands(), QStringList({"play tarvox repeat", "close tarvox"}));
    }

    // The last four characters, in any case, decide: a video, a picture (24-bit or 8-bit, found in the
    // program folder by its bare name, the surface left hidden and sized to it), or nothing at all, not
    // even the picture that was there.
    void whatAFileNameShows() {
        QTemporaryDir folder;
        QImage picture(32, 24, QImage::Format_RGB888);
        picture.fill(Qt::darkCyan);
        QVERIFY(picture.save(folder.filePath("true.bmp"), "BMP"));
        QVERIFY(picture.convertToFormat(QImage::Format_Indexed8).save(folder.filePath("eight.bmp"), "BMP"));
        QVERIFY(writeFile(folder.filePath("broken.bmp"), "BM not really"));
        RecordingMediaCommands commands;
        ExerciseMedia media(commands, folder.path());
        MediaSurface surface;
        surface.show();

        QCOMPARE(media.ShowExerciseMedia(surface, "Clip.AVI", 1), ".avi");
        QVERIFY(commands.commands().filter("open").size() == 1);
        commands.clear();
        for (const auto& [name, extension] :
             {std::pair{"notes.txt", ".txt"}, std::pair{"clip.avi ", "avi "}}) {
            QVERIFY(surface.loadPicture(folder.filePath("true.bmp"))); // the last exercise's picture goes
            QCOMPARE(media.ShowExerciseMedia(surface, name, 1), extension);
            QVERIFY2(!surface.hasPicture(), name);
        }
        QVERIFY(commands.commands().isEmpty());
        for (const char* name : {"true.bmp", "EIGHT.BMP"}) {
            QCOMPARE(media.ShowExerciseMedia(surface, QString(name).toLower(), 1), ".bmp");
            QVERIFY2(surface.hasPicture() && surface.size() == QSize(32, 24) && !surface.isVisible(), name);
            QCOMPARE(surface.grab().toImage().pixelColor(5, 5), QColor(Qt::darkCyan));
        }
        for (const char* name : {"broken.bmp", "missing.bmp"}) {
            media.ShowPicture(surface, QLatin1String(name));
            QVERIFY2(!surface.hasPicture() && !surface.isVisible(), name);
        }
    }

    // A window is on the monitor that shows the most of it, the first of equals; on none when off all.
    void theMonitorAWindowIsOn() {
        const std::vector<QRect> desk{{0, 0, 1280, 800}, {1280, 0, 1280, 800}};
        QCOMPARE(ScreenCovers::mostOf(desk, {1280, 0, 1280, 781}), 1);
        QCOMPARE(ScreenCovers::mostOf(desk, {1000, 19, 600, 600}), 1);
        QCOMPARE(ScreenCovers::mostOf(desk, {980, 19, 600, 600}), 0);
        QCOMPARE(ScreenCovers::mostOf(desk, {0, 800, 100, 100}), -1);
    }

    // Each button reaches its handler with a Cancel flag; a disabled one reaches nothing.
    void buttonBar() {
        struct Log : MMControl::Listener {
            QStringList clicks;
            void note(const char* what, bool& Cancel) {
                clicks << QString("%1 %2").arg(what).arg(Cancel);
                Cancel = true;
            }
            void MMControl_PrevClick(bool& Cancel) override { note("prev", Cancel); }
            void MMControl_NextClick(bool& Cancel) override { note("next", Cancel); }
            void MMControl_PlayClick(bool& Cancel) override { note("play", Cancel); }
            void MMControl_PauseClick(bool& Cancel) override { note("pause", Cancel); }
            void MMControl_StopClick(bool& Cancel) override { note("stop", Cancel); }
        } log;
        MMControl bar;
        bar.setListener(&log);
        bar.setButtonEnabled(MMControl::Play, false);
        for (const MMControl::Button b :
             {MMControl::Prev, MMControl::Next, MMControl::Play, MMControl::Pause, MMControl::Stop}) {
            QVERIFY(bar.button(b)->focusPolicy() & Qt::TabFocus);
            bar.button(b)->click();
        }
        QCOMPARE(log.clicks, QStringList({"prev 0", "next 0", "pause 0", "stop 0"}));
    }

    // The spinner steps the field's number within its bounds; a number typed past them stays until the
    // spinner is used, and a field without a number steps from the spinner's own value.
    void spinnerAndItsField() {
        QLineEdit field;
        UpDown spinner;
        spinner.setBuddy(&field);
        spinner.setRange(2, 99);
        field.setText("5");
        spinner.stepUp();
        QCOMPARE(field.text(), "6");
        field.setText("999");
        QCOMPARE(field.text(), "999");
        spinner.stepDown();
        QCOMPARE(field.text(), "99");
        field.setText("");
        spinner.stepDown();
        QCOMPARE(field.text(), "98");
        field.setText("1");
        spinner.findChild<QToolButton*>("down")->click();
        QCOMPARE(field.text(), "2");
    }
};

QTEST_MAIN(TestControls)
#include "tst_controls.moc"
