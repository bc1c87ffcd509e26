// The options dialog on fakes: LoadMeUp fills the controls from the record and greys the Esc box
// under the outside lock; Ctrl+Tab wraps through the tabs; digit fields swallow what is not a digit;
// Apply shows its corrections and tells the break screen; OK hides after half a second, Cancel at once.
#include "engine/EngineRig.h"
#include "options/frmSettings.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTabBar>
#include <QtTest>

using namespace tarvo;

namespace {

struct Neighbours : frmSettings::Neighbours {
    QStringList log;
    void warningChanged(const QString& warning) override { log << "warning " + warning; }
    void chooseSound(int index, QWidget*) override { log << QStringLiteral("sound %1").arg(index); }
};

} // namespace

class TestFrmSettings : public QObject {
    Q_OBJECT

private slots:
    void openApplyAndClose() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.store.model().setValue("Micropause", "DisableEsc2", "1");
        rig.settings.InterruptEvery = 7;
        Neighbours neighbours;
        frmSettings form(rig.ctx, rig.engine, neighbours);
        form.LoadMeUp();
        QVERIFY(form.isVisible());
        auto* txtIntFor = form.findChild<QLineEdit*>("txtIntFor");
        auto* txtIntEvery = form.findChild<QLineEdit*>("txtIntEvery");
        QCOMPARE(txtIntEvery->text(), "7");
        QVERIFY(!form.findChild<QCheckBox*>("chkDisableEsc")->isEnabled());

        auto* ts = form.findChild<QTabBar*>("ts");
        QCOMPARE(ts->count(), 3);
        QCOMPARE(ts->tabData(1).toString(), "Execercise");
        QCOMPARE(ts->tabToolTip(0), "Micropause Options");
        for (const int next : {1, 2, 0}) {
            QTest::keyClick(&form, Qt::Key_Tab, Qt::ControlModifier);
            QCOMPARE(ts->currentIndex(), next);
        }
        QCOMPARE(form.findChild<QStackedWidget*>("stackTs")->currentWidget(),
                 form.findChild<QWidget*>("picTs_1"));

        txtIntFor->setFocus();
        txtIntFor->selectAll();
        QTest::keyClicks(txtIntFor, "1x-");
        QCOMPARE(txtIntFor->text(), "1");
        QTest::mouseClick(form.findChild<QPushButton*>("cmdWarning_2"), Qt::LeftButton);
        QTest::mouseClick(form.findChild<QPushButton*>("cmdApply"), Qt::LeftButton);
        QCOMPARE(txtIntFor->text(), "3");
        QCOMPARE(rig.store.model().value("Micropause", "InterruptFor"), std::optional<QString>("3"));
        QCOMPARE(neighbours.log, QStringList({"sound 2", "warning " + rig.settings.Warning}));
        QVERIFY(form.isVisible());

        QTest::mouseClick(form.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        rig.timeline.advance(499);
        QVERIFY(form.isVisible());
        rig.timeline.advance(1);
        QVERIFY(!form.isVisible());
        form.LoadMeUp();
        QTest::keyClick(&form, Qt::Key_Escape);
        QVERIFY(!form.isVisible());
    }
};

QTEST_MAIN(TestFrmSettings)
#include "tst_frmsettings.moc"
