// The main form: its timers drive the scheduler, its labels show what the scheduler wrote, and the
// handovers leave it as signals.
#include "frmTarvo.h" // first, to show that it stands on its own

// Test doubles and what the form reads.
#include "FakeActivityMonitor.h"
#include "FakeClock.h"
#include "ManualTimer.h"
#include "SchedulerState.h"
#include "SettingsRecord.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace tarvo;

class TestFrmTarvo : public QObject {
    Q_OBJECT

private slots:
    void timersDriveTheSchedulerIntoTheLabels() {
        SettingsRecord settings;
        settings.EveryM = 2;
        SchedulerState state;
        FakeClock clock;
        ManualTimeline timeline(&clock);
        FakeActivityMonitor monitor;
        frmTarvo form(settings, state, clock, monitor, timeline);
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
};

QTEST_MAIN(TestFrmTarvo)
#include "tst_frmtarvo.moc"
