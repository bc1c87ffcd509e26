// The main form: its timers drive the scheduler, its labels show what the scheduler wrote, and the
// handovers leave it as signals.
#include "micropause/frmTarvo.h" // first, to show that it stands on its own

// Test doubles and what the form reads.
#include "micropause/PictureBox.h"
#include "micropause/SchedulerState.h"
#include "micropause/Warnings.h"
#include "platform/fake/FakeActivityMonitor.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/ManualTimer.h"
#include "settings/SettingsRecord.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace tarvo;

namespace {

// What is heard and when is the micropause's own tests' concern.
struct SilentWarnings : Warnings {
    void AudibleWarningPre() override {}
    void AudibleWarning() override {}
    void AudibleWarningX() override {}
    void AudibleNotification() override {}
};

// Lit columns of the bar's picture: those in the bar's own colour.
int litColumns(const PictureBox* canvas) {
    const QImage image = canvas->image();
    const QRgb lit = resolveOleColor(0x00AABA5Eu, canvas->palette()).rgb();
    int n = 0;
    for (int x = 0; x < image.width(); ++x)
        n += image.pixel(x, image.height() / 2) == lit ? 1 : 0;
    return n;
}

// A main form on simulated time; it reads the settings when it uses them.
struct FormRig {
    SettingsRecord settings;
    SchedulerState state;
    FakeClock clock;
    ManualTimeline timeline{&clock};
    FakeActivityMonitor monitor;
    SilentWarnings warnings;
    frmTarvo form{settings, state, clock, monitor, timeline, warnings};
};

} // namespace

class TestFrmTarvo : public QObject {
    Q_OBJECT

private slots:
    void timersDriveTheSchedulerIntoTheLabels() {
        FormRig rig;
        rig.settings.EveryM = 2;
        frmTarvo& form = rig.form;
        ManualTimeline& timeline = rig.timeline;
        const auto text = [&](const char* label) {
            return form.findChild<QLabel*>(QLatin1String(label))->text();
        };
        QSignalSpy prompt(&form, &frmTarvo::exercisePromptDue);
        QVERIFY(!form.isVisible() && form.findChild<QLabel*>("lbltarvo"));

        timeline.advance(60000); // nothing runs before start-up arms the timers
        QCOMPARE(text("lblExercise"), QString());
        form.scheduler().SetTimers();
        QCOMPARE(text("lblExercise"), "Next Exercise Break: 1 minutes");
        timeline.advance(15000); // an idle user
        QCOMPARE(text("lblvoluntary"), "Last natural micropause: 09:01");
        timeline.advance(105000);
        QCOMPARE(text("lblExercise"), "Next Exercise Break: -1 minutes");
        QCOMPARE(prompt.count(), 1);

        form.show();
        QTest::mouseClick(form.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        QVERIFY(!form.isVisible());
    }

    void theBreakScreenOnTheForm() {
        FormRig rig;
        rig.settings.InterruptFor = 2;
        frmTarvo& form = rig.form;
        ManualTimeline& timeline = rig.timeline;
        SettingsRecord& settings = rig.settings;
        form.setWarning("Hands off Keyboard && Mouse, look away, relax.");
        auto* lblWarning = form.findChild<QLabel*>("lblWarning");
        auto* lblESC = form.findChild<QLabel*>("lblESC");
        auto* picPB = form.findChild<PictureBox*>("picPB");
        auto* picBlack = form.findChild<QWidget*>("picBlack");
        auto* cmdOK = form.findChild<QPushButton*>("cmdOK");
        QCOMPARE(lblWarning->text(), "Hands off Keyboard & Mouse, look away, relax.");
        form.scheduler().SetTimers();

        // Blanked: full screen, the panel centred, the hint shown, the bar counting.
        form.TarvoMicropause();
        QVERIFY(form.isVisible() && picPB->isVisible() && lblESC->isVisible() && !cmdOK->isVisible());
        QVERIFY(form.windowFlags() & Qt::WindowStaysOnTopHint); // full screen: the end-to-end test
        QCOMPARE(picBlack->geometry().center(), form.rect().center());
        timeline.advance(1000);
        QCOMPARE(form.bar().Value(), 11);
        QVERIFY(picPB->ScaleWidth() > 0);
        QCOMPARE(litColumns(picPB), (11 * picPB->ScaleWidth() + 10) / 20); // 11 of 20 steps

        // Esc ends it on the next tick, through the ordinary ending.
        QTest::keyClick(&form, Qt::Key_Escape);
        timeline.advance(100);
        QVERIFY(!form.isVisible());
        QVERIFY(cmdOK->isVisibleTo(&form) && !lblESC->isVisibleTo(&form) && !picPB->isVisibleTo(&form));
        QCOMPARE(form.findChild<QLabel*>("lbltarvo")->text(), "Last tarvo micropause: 09:00");
        QVERIFY(!(form.windowFlags() & Qt::WindowStaysOnTopHint));

        // At its own size: the panel is the window; a double click on the hint ends the break too.
        settings.Blank = 0;
        form.TarvoMicropause();
        QVERIFY(!(form.windowState() & Qt::WindowFullScreen));
        QCOMPARE(form.size(), picBlack->size());
        QTest::mouseDClick(lblESC, Qt::LeftButton);
        timeline.advance(100);
        QVERIFY(!form.isVisible());

        // Esc disabled: no hint, and Esc changes nothing. Minimising the break screen hides it.
        settings.DisableEsc = 1;
        form.TarvoMicropause();
        QVERIFY(!lblESC->isVisible());
        QTest::keyClick(&form, Qt::Key_Escape);
        timeline.advance(100);
        QVERIFY(form.isVisible());
        form.setWindowState(Qt::WindowMinimized);
        QVERIFY(!form.isVisible());
        timeline.advance(2000);
        QVERIFY(!rig.state.InMicropause);
    }
};

QTEST_MAIN(TestFrmTarvo)
#include "tst_frmtarvo.moc"
