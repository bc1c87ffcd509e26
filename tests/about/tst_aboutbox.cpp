// The About box.
#include "about/frmAboutKelmar.h"
#include "core/ProgramInfo.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

using namespace tarvo;

class TestAboutBox : public QObject {
    Q_OBJECT

private slots:
    void showsNameVersionAndIconAndClosesOnOk() {
        QPixmap teal(32, 32);
        teal.fill(Qt::darkCyan);
        QApplication::setWindowIcon(QIcon(teal));
        frmAboutKelmar form;
        QCOMPARE(form.windowTitle(), "About Tarvo Micropause");
        QCOMPARE(form.findChild<QLabel*>("lblTitle")->text(), "Tarvo Micropause");
        QCOMPARE(form.findChild<QLabel*>("lblVersion")->text(), QString::fromLatin1(kVersionText));
        QVERIFY(QRegularExpression("^\\d+\\.\\d+\\.\\d+$").match(QLatin1String(kVersionText)).hasMatch());
        const QImage icon = form.findChild<QLabel*>("imgIcon")->pixmap().toImage();
        QVERIFY(!icon.isNull() &&
                QColor(icon.pixel(icon.width() / 2, icon.height() / 2)) == QColor(Qt::darkCyan));

        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QTest::mouseClick(form.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        QVERIFY(!form.isVisible());
    }
};

QTEST_MAIN(TestAboutBox)
#include "tst_aboutbox.moc"
