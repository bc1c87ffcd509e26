// Apply without the dialog: its silent corrections, its writes in the store's order, the running
// countdowns, and an unreadable exercise field. Then the dialog on fakes: LoadMeUp fills the controls
// from the record and greys the Esc box under the outside lock; Ctrl+Tab wraps through the tabs; digit
// fields swallow what is not a digit; Apply shows its corrections and tells the break screen; OK hides
// after half a second, Cancel at once.
#include "core/RuntimeError.h"
#include "engine/EngineRig.h"
#include "options/OptionFields.h"
#include "options/frmSettings.h"
#include "support/Raised.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTabBar>
#include <QtTest>

using namespace tarvo;

namespace {

struct Port : ApplyPort {
    MemoryRegistryStore& store;
    QStringList log;
    explicit Port(MemoryRegistryStore& s)
        : store(s) {}
    void warningChanged(const QString& warning) override { log << "warning " + warning; }
    void saveScheme() override {
        log << QStringLiteral("scheme saved after %1 writes").arg(store.writes().size());
    }
};

struct Neighbours : frmSettings::Neighbours {
    QStringList log;
    void warningChanged(const QString& warning) override { log << "warning " + warning; }
    void chooseSound(int index, QWidget*) override { log << QStringLiteral("sound %1").arg(index); }
};

QStringList writtenKeys(const MemoryRegistryStore& store) {
    QStringList keys;
    for (const auto& w : store.writes())
        keys << w.section + '/' + w.key + '=' + w.text;
    return keys;
}

} // namespace

class TestApplyOptions : public QObject {
    Q_OBJECT

private slots:
    // Each micropause field is corrected into its range, an unreadable one gets its value back first
    // (then, as nothing was read before it, the lower bound); a typed interval may pass the spinner.
    void micropauseFieldsAreCorrected() {
        struct Case {
            const char* intFor;
            const char* intEvery;
            const char* intForAfter;
            const char* intEveryAfter;
        };
        const Case cases[] = {
            {"1", "999", "3", "999"}, {"75", "1", "60", "2"}, {"", "", "3", "2"}, {"20", "x", "20", "4"}};
        for (const Case& c : cases) {
            EngineRig rig;
            Port port(rig.store);
            OptionFields fields = fieldsFromRecord(rig.settings);
            fields.txtIntFor = QLatin1String(c.intFor);
            fields.txtIntEvery = QLatin1String(c.intEvery);
            applyOptions(fields, rig.ctx, rig.engine.scheduler(), port);
            QCOMPARE(fields.txtIntFor, QLatin1String(c.intForAfter));
            QCOMPARE(fields.txtIntEvery, QLatin1String(c.intEveryAfter));
            QCOMPARE(rig.settings.InterruptFor, fields.txtIntFor.toInt());
            QCOMPARE(rig.settings.InterruptEvery, fields.txtIntEvery.toInt());
        }
    }

    // Every option in the order the store expects, the scheme saved just before its name, the break
    // screen told the new message, and the countdowns moved.
    void applyWritesEveryOptionInOrder() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.state.MinutesToMicropause = 3;
        rig.state.MinutesToExercise = 40;
        rig.ctx.exercises.CurrentScheme = "Mine";
        Port port(rig.store);
        OptionFields fields = fieldsFromRecord(rig.settings);
        fields.txtIntEvery = "10";
        fields.txtEveryM = "30";
        fields.optXstartRandom = true;
        fields.comboView = 4;
        fields.txtWarning = "Rest";
        applyOptions(fields, rig.ctx, rig.engine.scheduler(), port);
        QCOMPARE(writtenKeys(rig.store),
                 QStringList({"Micropause/InterruptFor=15", "Micropause/InterruptEvery=10",
                              "Micropause/Audible=1",       "Micropause/WarningSound=",
                              "Micropause/AudiblePre=1",    "Micropause/WarningSoundPre=",
                              "Micropause/Blank=1",         "Micropause/Warning=Rest",
                              "Micropause/DisableEsc=0",    "Micropause/IntelliReset=1",
                              "Micropause/Monitor0=1",      "Micropause/Monitor1=1",
                              "Exercise/AudibleX=1",        "Exercise/EveryM=30",
                              "Exercise/WarningSoundX=",    "Exercise/BlankX=1",
                              "Exercise/ViewAm=4",          "Exercise/Scheme=Mine",
                              "Exercise/xStart=-1",         "Exercise/NumAtaTime=6"}));
        QCOMPARE(port.log, QStringList({"warning Rest", "scheme saved after 17 writes"}));
        QCOMPARE(rig.state.MinutesToMicropause, 9); // 3 + (10 - 4)
        QCOMPARE(rig.state.MinutesToExercise, 30);

        fields.optXstartRandom = false;
        applyOptions(fields, rig.ctx, rig.engine.scheduler(), port);
        QCOMPARE(rig.store.model().value("Exercise", "xStart"), std::optional<QString>("0"));
    }

    // An emptied exercise field is not repaired: its error ends Apply with the micropause options in
    // the store and nothing of the exercise options.
    void anEmptyExerciseFieldStopsApply() {
        for (const bool emptyEveryM : {true, false}) {
            EngineRig rig;
            Port port(rig.store);
            OptionFields fields = fieldsFromRecord(rig.settings);
            (emptyEveryM ? fields.txtEveryM : fields.txtNumAtaTime).clear();
            const auto e =
                raised<RuntimeError>([&] { applyOptions(fields, rig.ctx, rig.engine.scheduler(), port); });
            QVERIFY(e && e->number() == vberr::TypeMismatch);
            QCOMPARE(rig.store.writes().size(), size_t(12));
            QCOMPARE(rig.store.writes().back().key, "Monitor1");
        }
    }

    void openApplyAndClose() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.store.model().setValue("Micropause", "DisableEsc2", "1");
        rig.settings.InterruptEvery = 7;
        rig.settings.ViewAm = 7; // no size of the list
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
        QCOMPARE(rig.store.model().value("Exercise", "ViewAm"), std::optional<QString>("7"));
        QCOMPARE(neighbours.log, QStringList({"sound 2", "warning " + rig.settings.Warning}));
        QVERIFY(form.isVisible());
        form.findChild<QComboBox*>("comboView")->setCurrentIndex(2);
        QTest::mouseClick(form.findChild<QPushButton*>("cmdApply"), Qt::LeftButton);
        QCOMPARE(rig.store.model().value("Exercise", "ViewAm"), std::optional<QString>("2"));

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

QTEST_MAIN(TestApplyOptions)
#include "tst_applyoptions.moc"
