// The file dialog's filter as Qt takes it.
#include "platform/linux/QtFileDialog.h"

#include <QtTest>

using namespace tarvo;

class TestQtFileDialog : public QObject {
    Q_OBJECT

private slots:
    void filterForQt() {
        QCOMPARE(QtFileDialog::nameFilters("Audio|*.wav|All files|*.*"),
                 QStringList({"Audio (*.wav)", "All files (*)"}));
        QCOMPARE(QtFileDialog::nameFilters("Media|*.avi; *.bmp|Odd"), QStringList{"Media (*.avi *.bmp)"});
        QCOMPARE(QtFileDialog::nameFilters(QString()), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestQtFileDialog)
#include "tst_qtfiledialog.moc"
