// The status window with two weeks of history: the pictures come below its texts, drawn from the file;
// "History..." clears it only when the user says Yes, and switches it off, which a note then says.
// Leaves pictures of the window at 100% and 200% and on a dark palette in the build's screenshots
// folder, to be looked at.
#include "history/HistoryLog.h"
#include "history/HistoryPanel.h"
#include "history/frmHistoryOptions.h"
#include "micropause/MainForm.h"
#include "micropause/frmTarvo.h"
#include "support/FakeContext.h"

#include <QCheckBox>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

using namespace tarvo;

class TestHistoryPanel : public QObject {
    Q_OBJECT

private slots:
    void statusWindowWithHistory() {
        FakeContext f;
        QTemporaryDir dir;
        HistoryLog log(dir.filePath("history.sqlite"), TARVO_PROGRAM_DIR, f.ctx.settings, f.clock,
                       f.timeline);
        const QDate today(2026, 11, 23);
        f.clock.setLocalNow(QDateTime(today, QTime(15, 30)));
        auto add = [&](HistoryKind kind, const QDateTime& at, QLatin1String outcome = {}, int seconds = 0) {
            log.record({kind, at, QString(outcome), seconds, {}});
        };
        // Each day from 8:00: a micropause every 20 minutes, every third ended early; the prompt put off at
        // 10:00 and an exercise break at 12:00; a day's work grows with the date.
        for (int ago = 13; ago >= 0; --ago) {
            const QDateTime day(today.addDays(-ago), QTime(8, 0));
            add(HistoryKind::Startup, day);
            for (int m = 20; m < 8 * 60 - ago * 15 && day.addSecs(m * 60) < f.clock.localNow(); m += 20) {
                const bool skipped = m % 60 == 0;
                add(HistoryKind::Micropause, day.addSecs(m * 60),
                    skipped ? outcome::EndedEarly : outcome::Completed, skipped ? 2 : 15);
            }
            add(HistoryKind::ExercisePrompt, day.addSecs(2 * 3600), outcome::Later, 300);
            add(HistoryKind::ExerciseBreak, day.addSecs(4 * 3600), outcome::Completed, 240);
            if (ago > 0)
                add(HistoryKind::Shutdown, day.addSecs(8 * 3600 - ago * 900));
            else { // today the screen was locked at 13:05, and breaks were held from 14:05
                add(HistoryKind::Lock, day.addSecs(5 * 3600 + 300), outcome::Away, 600);
                add(HistoryKind::Hold, day.addSecs(6 * 3600 + 300), outcome::CameAfter, 1200);
            }
        }
        MainForm main;
        main.setStatusPanelMaker([&] { return std::make_unique<HistoryPanel>(log, f.clock); });
        main.showStatus();
        frmTarvo* form = main.form();
        auto* panel = form->findChild<HistoryPanel*>("pnlHistory");
        QVERIFY(panel && panel->isVisible() && !panel->findChild<QLabel*>("lblHistoryProblem"));
        QVERIFY(panel->geometry().top() >= form->findChild<QLabel*>("lblActivity")->geometry().bottom());
        const DayTotals& t = panel->summary().days.back(); // today until 15:30: 22 micropauses and a break
        QCOMPARE(QList<int>({t.taken, t.skipped, t.postponed}), QList<int>({15 + 1, 7, 1}));
        QCOMPARE(t.longestStretch, 40 * 60 - 15); // across a micropause ended early

        const QString shots = TARVO_PROGRAM_DIR "/../screenshots/";
        QDir().mkpath(shots);
        QVERIFY(form->grab().save(shots + "status-history-100.png"));
        QPixmap twice(form->size() * 2);
        twice.setDevicePixelRatio(2);
        twice.fill(form->palette().color(QPalette::Window));
        QPainter painter(&twice);
        form->render(&painter);
        painter.end();
        QVERIFY(twice.save(shots + "status-history-200.png"));
        QPalette dark;
        dark.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2b));
        dark.setColor(QPalette::WindowText, QColor(0xe6, 0xe6, 0xe6));
        dark.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
        form->setPalette(dark);
        QVERIFY(form->grab().save(shots + "status-history-dark.png"));

        // "History...": Clear asks first, and only Yes empties; recording off, the window opened again says
        // so.
        frmHistoryOptions options(log, f.messages);
        auto* clear = options.findChild<QPushButton*>("cmdClear");
        f.messages.answerNext(MessageBox::Answer::No);
        clear->click();
        QVERIFY(!log.eventsSince({}).empty());
        f.messages.answerNext(MessageBox::Answer::Yes);
        clear->click();
        QVERIFY(log.eventsSince({}).empty());
        options.findChild<QCheckBox*>("chkRecord")->click();
        QCOMPARE(f.store.model().value("Options", "RecordHistory"), "0");
        form->hide();
        QTRY_VERIFY(!main.form());
        main.showStatus();
        auto* note = main.form()->findChild<QLabel*>("lblHistoryProblem");
        QVERIFY(note && note->text().contains("switched off"));
    }
};

QTEST_MAIN(TestHistoryPanel)
#include "tst_historypanel.moc"
