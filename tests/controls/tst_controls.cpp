// The shared controls: the media procedures' exact commands and pictures on a media surface, and the
// up-down spinner beside its text field. (The button bar: the player's test.)
#include "controls/ExerciseMedia.h"
#include "controls/MediaSurface.h"
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
    // a name goes in as written, "%2" and all. (Playing and closing: the player's test.)
    void videoCommands() {
        QCOMPARE((QList<QSize>{ExerciseMedia::videoSize(0), ExerciseMedia::videoSize(1),
                               ExerciseMedia::videoSize(2), ExerciseMedia::videoSize(3),
                               ExerciseMedia::videoSize(4), ExerciseMedia::videoSize(7)}),
                 (QList<QSize>{{239, 179}, {319, 239}, {479, 359}, {639, 479}, {959, 719}, {-1, -1}}));
        RecordingMediaCommands commands;
        ExerciseMedia media(commands, "/opt/tarvo");
        MediaSurface surface;
        for (const int index : {4, 7}) {
            commands.clear();
            media.OpenVideo(surface, "neck%2turn.avi", index);
            const QSize size = ExerciseMedia::videoSize(index);
            QCOMPARE(
                commands.commands(),
                QStringList(
                    {"close tarvox",
                     "open \"/opt/tarvo/neck%2turn.avi\" type AVIVideo alias tarvox parent " +
                         QString::number(surface.handle()) + " style 1073741824",
                     QStringLiteral("put tarvox window at 0 0 %1 %2").arg(size.width()).arg(size.height())}));
            QCOMPARE(surface.size(), size.expandedTo(QSize(0, 0)));
        }
        QCOMPARE(media.mediaFile("clips/a.avi"), "clips/a.avi");
        QCOMPARE(media.mediaFile("C:\\Media\\a.avi"), "C:\\Media\\a.avi");
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
