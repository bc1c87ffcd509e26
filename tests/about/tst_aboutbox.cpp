// The About box: the program's name, version and icon; OK closes it.
#include "about/frmAboutKelmar.h"
#include "core/ProgramInfo.h"

#include <QtTest>
#include <QtWidgets>

using namespace tarvo;

class TestAboutBox : public QObject {
    Q_OBJECT

private slots:
    void showsNameVersionAndIconAndClosesOnOk() {
        QPixmap teal(32, 32);
        teal.fill(Qt::darkCyan);
        QApplication::setWindowIcon(QIcon(teal));
        frmAboutKelmar form;
        QCOMPARE(form.findChild<QLabel*>("lblVersion")->text(), QString::fromLatin1(kVersionText));
        QVERIFY(QRegularExpression("^\\d+\\.\\d+\\.\\d+$").match(QLatin1String(kVersionText)).hasMatch());
        const QImage icon = form.findChild<QLabel*>("imgIcon")->pixmap().toImage();
        QCOMPARE(QColor(icon.pixel(icon.width() / 2, icon.height() / 2)), QColor(Qt::darkCyan));
        form.show();
        QTest::mouseClick(form.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        QVERIFY(!form.isVisible());
    }
};

QTEST_MAIN(TestAboutBox)
#include "tst_aboutbox.moc"
