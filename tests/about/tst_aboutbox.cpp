// The About box, and the program icon it shows.
#include "about/frmAboutKelmar.h"
#include "core/Version.h"
#include "shell/ProgramIcon.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

using namespace tarvo;

class TestAboutBox : public QObject {
    Q_OBJECT

private slots:
    void showsVersionAndIconAndClosesOnOk() {
        frmAboutKelmar form;
        QCOMPARE(form.findChild<QLabel*>("lblVersion")->text(), QString::fromLatin1(kVersionText));
        QVERIFY(!form.findChild<QLabel*>("imgIcon")->pixmap().isNull());

        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QTest::mouseClick(form.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        QVERIFY(!form.isVisible());
    }

    // The icon has a picture of its own for each common size, not one picture scaled: at every size
    // the badge fills the square and its pause bars are light on a dark body.
    void programIconIsDrawnAtEverySize() {
        const QIcon icon = programIcon();
        for (const int size : {16, 22, 32, 256}) {
            const QImage image = icon.pixmap(size, size).toImage();
            QCOMPARE(image.size(), QSize(size, size));
            const auto lightness = [&](double x, double y) {
                return QColor(image.pixel(int(x * size), int(y * size))).lightness();
            };
            QVERIFY2(qAlpha(image.pixel(size / 2, 1)) > 0 && qAlpha(image.pixel(1, size / 2)) > 0,
                     qPrintable(QString::number(size)));
            QVERIFY2(lightness(0.34, 0.5) > 220 && lightness(0.66, 0.5) > 220,
                     qPrintable(QString::number(size)));
            QVERIFY2(lightness(0.5, 0.5) < 140 && lightness(0.5, 0.15) < 160,
                     qPrintable(QString::number(size)));
        }
    }
};

QTEST_MAIN(TestAboutBox)
#include "tst_aboutbox.moc"
