// Apply without the dialog: its silent corrections, an unreadable exercise field, its writes in the
// store's order (M for "Micropause", E for "Exercise") and the running countdowns. Then the dialog on
// fakes: LoadMeUp fills the controls from the record and greys the Esc box under the outside lock;
// Ctrl+Tab wraps through the tabs; digit fields swallow what is not a digit; Apply shows its
// corrections, tells the break screen and keeps a video size the list cannot show; OK hides after half
// a second, Cancel at once. The presence options' own dialog from the first page.
#include "core/RuntimeError.h"
#include "engine/EngineRig.h"
#include "options/OptionFields.h"
#include "options/frmSettings.h"
#include "support/Raised.h"

#include <QtTest>
#include <QtWidgets>

using namespace tarvo;

namespace {

// What Apply tells the program around it and what the dialog asks of its neighbours, in one log; the
// scheme is saved with the number of writes before it.
struct Log : ApplyPort, frmSettings::Neighbours {
    explicit Log(MemoryRegistryStore& s)
        : store(s) {}
    void warningChanged(const QString& warning) override { log << "warning " + warning; }
    void saveScheme() override {
        log << QStringLiteral("scheme saved after %1 writes").arg(store.writes().size());
    }
    void chooseSound(int index, QWidget*) override { log << QStringLiteral("sound %1").arg(index); }
    MemoryRegistryStore& store;
    QStringList log;
};

} // namespace

class TestApplyOptions : public QObject {
    Q_OBJECT

private slots:
    // Each micropause field is corrected into its range, an unreadable one gets its value back first
    // (then, as nothing was read before it, the lower bound); a typed interval may pass the spinner.
    // An emptied exercise field is not repaired: its error ends Apply with the micropause options in
    // the store and nothing of the exercise options.
    void correctionsAndErrors() {
        const std::array<QString, 4> cases[] = {
            {"1", "999", "3", "999"}, {"75", "1", "60", "2"}, {"", "", "3", "2"}, {"20", "x", "20", "4"}};
        for (const auto& [intFor, intEvery, intForAfter, intEveryAfter] : cases) {
            EngineRig rig;
            Log port(rig.store);
            OptionFields fields = fieldsFromRecord(rig.settings);
            fields.txtIntFor = intFor;
            fields.txtIntEvery = intEvery;
            applyOptions(fields, rig.ctx, rig.engine.scheduler(), port);
            QCOMPARE(fields.txtIntFor + '/' + fields.txtIntEvery, intForAfter + '/' + intEveryAfter);
            QCOMPARE(rig.settings.InterruptFor, intForAfter.toInt());
            QCOMPARE(rig.settings.InterruptEvery, intEveryAfter.toInt());
        }
        EngineRig rig;
        Log port(rig.store);
        OptionFields fields = fieldsFromRecord(rig.settings);
        fields.txtNumAtaTime.clear();
        const auto e =
            raised<RuntimeError>([&] { applyOptions(fields, rig.ctx, rig.engine.scheduler(), port); });
        QVERIFY(e && e->number() == vberr::TypeMismatch);
        QCOMPARE(rig.store.writes().size(), size_t(12));
        QCOMPARE(rig.store.writes().back().key, "Monitor1");
    }

    // Every option in the order the store expects, the scheme saved just before its name, the break
    // screen told the new message, and the countdowns moved.
    void applyWritesEveryOptionInOrder() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.state.MinutesToMicropause = 3;
        rig.state.MinutesToExercise = 40;
        rig.ctx.exercises.CurrentScheme = "Mine";
        Log port(rig.store);
        OptionFields fields = fieldsFromRecord(rig.settings);
        fields.txtIntEvery = "10";
        fields.txtEveryM = "30";
        fields.optXstartRandom = true;
        fields.comboView = 4;
        fields.txtWarning = "Rest";
        applyOptions(fields, rig.ctx, rig.engine.scheduler(), port);
        QString written;
        for (const auto& w : rig.store.writes())
            written += w.section.left(1) + '/' + w.key + '=' + w.text + ' ';
        QCOMPARE(written,
                 "M/InterruptFor=15 M/InterruptEvery=10 M/Audible=1 M/WarningSound= M/AudiblePre=1 "
                 "M/WarningSoundPre= M/Blank=1 M/Warning=Rest M/DisableEsc=0 M/IntelliReset=1 M/Monitor0=1 "
                 "M/Monitor1=1 E/AudibleX=1 E/EveryM=30 E/WarningSoundX= E/BlankX=1 E/ViewAm=4 E/Scheme=Mine "
                 "E/xStart=-1 E/NumAtaTime=6 ");
        QCOMPARE(port.log, QStringList({"warning Rest", "scheme saved after 17 writes"}));
        QVERIFY(rig.state.MinutesToMicropause == 3 + (10 - 4) && rig.state.MinutesToExercise == 30);

        fields.optXstartRandom = false;
        applyOptions(fields, rig.ctx, rig.engine.scheduler(), port);
        QCOMPARE(rig.store.model().value("Exercise", "xStart"), std::optional<QString>("0"));
    }

    void openApplyAndClose() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.store.model().setValue("Micropause", "DisableEsc2", "1");
        rig.settings.InterruptEvery = 7;
        rig.settings.ViewAm = 7; // no size of the list
        Log neighbours(rig.store);
        frmSettings form(rig.ctx, rig.engine, neighbours);
        form.LoadMeUp();
        QVERIFY(form.isVisible());
        auto* txtIntFor = form.findChild<QLineEdit*>("txtIntFor");
        QCOMPARE(form.findChild<QLineEdit*>("txtIntEvery")->text(), "7");
        QVERIFY(!form.findChild<QWidget*>("chkDisableEsc")->isEnabled());

        auto* ts = form.findChild<QTabBar*>("ts");
        QCOMPARE(ts->count(), 3);
        QCOMPARE(ts->tabData(1).toString(), "Execercise"); // the tab's historic key, kept as it is
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
        QTest::mouseClick(form.findChild<QWidget*>("cmdWarning_2"), Qt::LeftButton);
        QTest::mouseClick(form.findChild<QWidget*>("cmdApply"), Qt::LeftButton);
        QCOMPARE(txtIntFor->text(), "3");
        QCOMPARE(rig.store.model().value("Micropause", "InterruptFor"), std::optional<QString>("3"));
        QCOMPARE(rig.store.model().value("Exercise", "ViewAm"), std::optional<QString>("7"));
        QCOMPARE(neighbours.log, QStringList({"sound 2", "warning " + rig.settings.Warning}));
        form.findChild<QComboBox*>("comboView")->setCurrentIndex(2);
        QTest::mouseClick(form.findChild<QWidget*>("cmdApply"), Qt::LeftButton);
        QCOMPARE(rig.store.model().value("Exercise", "ViewAm"), std::optional<QString>("2"));

        QTest::mouseClick(form.findChild<QWidget*>("cmdOK"), Qt::LeftButton);
        rig.timeline.advance(499);
        QVERIFY(form.isVisible());
        rig.timeline.advance(1);
        QVERIFY(!form.isVisible());
        form.LoadMeUp();
        QTest::keyClick(&form, Qt::Key_Escape);
        QVERIFY(!form.isVisible());
    }

    // The presence dialog from the first page: OK writes its section at once, and a full-screen window
    // no longer holds breaks once its box is cleared.
    void presenceDialog() {
        EngineRig rig;
        rig.engine.scheduler().SetTimers();
        rig.presence.set(PresenceCondition::FullScreen, true);
        Log neighbours(rig.store);
        frmSettings form(rig.ctx, rig.engine, neighbours);
        form.LoadMeUp();
        QTest::mouseClick(form.findChild<QWidget*>("cmdPresence"), Qt::LeftButton);
        auto* dialog = form.findChild<QDialog*>("frmPresence");
        QVERIFY(dialog && dialog->isVisible() && dialog->findChild<QCheckBox*>("chkFullScreen")->isChecked());
        dialog->findChild<QCheckBox*>("chkFullScreen")->setChecked(false);
        dialog->findChild<QSpinBox*>("spnHoldLimit")->setValue(15);
        QTest::mouseClick(dialog->findChild<QWidget*>("cmdOK"), Qt::LeftButton);
        QCOMPARE(rig.store.model().value("Presence", "HoldFullScreen"), std::optional<QString>("0"));
        QCOMPARE(rig.store.model().value("Presence", "HoldLimit"), std::optional<QString>("15"));
        QCOMPARE(rig.presenceText, "");
    }
};

QTEST_MAIN(TestApplyOptions)
#include "tst_applyoptions.moc"
