// The main form: its timers drive the scheduler, its labels show what the scheduler wrote, and the
// handovers leave it as signals.
#include "frmTarvo.h" // first, to show that it stands on its own

// Test doubles and what the form reads.
#include "FakeActivityMonitor.h"
#include "FakeClock.h"
#include "ManualTimer.h"
#include "PictureBox.h"
#include "SchedulerState.h"
#include "SettingsRecord.h"
#include "Warnings.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace tarvo;

namespace {

struct CountingWarnings : Warnings {
    QStringList heard;
    void AudibleWarningPre() override { heard << QStringLiteral("pre"); }
    void AudibleWarning() override { heard << QStringLiteral("warning"); }
    void AudibleWarningX() override { heard << QStringLiteral("exercise"); }
    void AudibleNotification() override { heard << QStringLiteral("notification"); }
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

// A main form on simulated time.
struct FormRig {
    SettingsRecord settings;
    SchedulerState state;
    FakeClock clock;
    ManualTimeline timeline{&clock};
    FakeActivityMonitor monitor;
    CountingWarnings warnings;
    std::unique_ptr<frmTarvo> form;

    explicit FormRig(const std::function<void(SettingsRecord&)>& options) {
        options(settings);
        form = std::make_unique<frmTarvo>(settings, state, clock, monitor, timeline, warnings);
    }
};

} // namespace

class TestFrmTarvo : public QObject {
    Q_OBJECT

private slots:
    void timersDriveTheSchedulerIntoTheLabels() {
        FormRig rig([](SettingsRecord& s) { s.EveryM = 2; });
        frmTarvo& form = *rig.form;
        ManualTimeline& timeline = rig.timeline;
        const auto text = [&](const char* label) {
            return form.findChild<QLabel*>(QLatin1String(label))->text();
        };
        QSignalSpy prompt(&form, &frmTarvo::exercisePromptDue);
        QVERIFY(!form.isVisible() && form.findChild<QLabel*>(QStringLiteral("lbltarvo")));

        timeline.advance(60000); // nothing runs before start-up arms the timers
        QCOMPARE(text("lblExercise"), QString());
        form.scheduler().SetTimers();
        QCOMPARE(text("lblExercise"), QStringLiteral("Next Exercise Break: 1 minutes"));
        timeline.advance(15000); // an idle user
        QCOMPARE(text("lblvoluntary"), QStringLiteral("Last natural micropause: 09:01"));
        timeline.advance(105000);
        QCOMPARE(text("lblExercise"), QStringLiteral("Next Exercise Break: -1 minutes"));
        QCOMPARE(prompt.count(), 1);

        form.show();
        QTest::mouseClick(form.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
        QVERIFY(!form.isVisible());
    }

    void theBreakScreenOnTheForm() {
        FormRig rig([](SettingsRecord& s) { s.InterruptFor = 2; });
        frmTarvo& form = *rig.form;
        ManualTimeline& timeline = rig.timeline;
        SettingsRecord& settings = rig.settings;
        form.setWarning(QStringLiteral("Hands off Keyboard && Mouse, look away, relax."));
        auto* lblWarning = form.findChild<QLabel*>(QStringLiteral("lblWarning"));
        auto* lblESC = form.findChild<QLabel*>(QStringLiteral("lblESC"));
        auto* picPB = form.findChild<PictureBox*>(QStringLiteral("picPB"));
        auto* picBlack = form.findChild<QWidget*>(QStringLiteral("picBlack"));
        auto* cmdOK = form.findChild<QPushButton*>(QStringLiteral("cmdOK"));
        QCOMPARE(lblWarning->text(), QStringLiteral("Hands off Keyboard & Mouse, look away, relax."));
        form.scheduler().SetTimers();

        // Blanked: full screen, the panel centred, the hint shown, the bar counting.
        form.TarvoMicropause();
        QVERIFY(form.isVisible() && picPB->isVisible() && lblESC->isVisible() && !cmdOK->isVisible());
        QVERIFY(form.windowState() & Qt::WindowFullScreen);
        QVERIFY(form.windowFlags() & Qt::WindowStaysOnTopHint);
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
        QCOMPARE(form.findChild<QLabel*>(QStringLiteral("lbltarvo"))->text(),
                 QStringLiteral("Last tarvo micropause: 09:00"));
        QCOMPARE(rig.warnings.heard, (QStringList{"warning", "notification"}));
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
