// The real time seams: the tick count's base, and the form timer's semantics on QTimer; and the file
// dialog's filter as Qt takes it.
#include "platform/linux/QtFileDialog.h"
#include "platform/linux/QtTimer.h"
#include "platform/linux/SystemClock.h"

#include <QtTest>

#include <ctime>
#include <map>

using namespace tarvo;

// Listens to the timers under test, counting each one's ticks.
class TestTimers : public QObject, Timer::Listener {
    Q_OBJECT

    std::map<const Timer*, int> ticks_;
    void timerTick(Timer& timer) override { ++ticks_[&timer]; }

private slots:
    void tickCountIsBootTimeInMilliseconds() {
        timespec ts{};
        clock_gettime(CLOCK_BOOTTIME, &ts);
        const auto expected = static_cast<std::uint32_t>(static_cast<std::uint64_t>(ts.tv_sec) * 1000u +
                                                         static_cast<std::uint64_t>(ts.tv_nsec) / 1000000u);
        QVERIFY2(static_cast<std::uint32_t>(SystemClock().tickCount()) - expected < 1000u,
                 "the tick count must be CLOCK_BOOTTIME in ms, truncated to 32 bits");
    }

    // The timer that runs shows time passing; the others must not have ticked meanwhile.
    void qtTimerFiresOnlyWhenEnabledWithAnInterval() {
        QtTimer disabled(*this), zero(*this), timer(*this);
        disabled.setInterval(10);
        zero.setEnabled(true); // an interval of 0 never fires, even enabled
        timer.setInterval(10);
        timer.setEnabled(true);
        QTRY_VERIFY_WITH_TIMEOUT(ticks_[&timer] >= 5, 5000);
        QCOMPARE(ticks_[&disabled], 0);
        QCOMPARE(ticks_[&zero], 0);

        // Disabled again it stops, while the one now given an interval runs.
        timer.setEnabled(false);
        zero.setInterval(20);
        const int stopped = ticks_[&timer];
        QTRY_VERIFY_WITH_TIMEOUT(ticks_[&zero] >= 5, 5000);
        QCOMPARE(ticks_[&timer], stopped);
    }

    void fileDialogFilterForQt() {
        QCOMPARE(QtFileDialog::nameFilters("Audio|*.wav|All files|*.*"),
                 QStringList({"Audio (*.wav)", "All files (*)"}));
        QCOMPARE(QtFileDialog::nameFilters("Video (*.avi)|*.avi;|Pictures (*.bmp)|*.bmp|All files|*.*"),
                 QStringList({"Video (*.avi)", "Pictures (*.bmp)", "All files (*)"}));
        QCOMPARE(QtFileDialog::nameFilters("Media (*.avi)|*.avi; *.bmp|Odd"),
                 QStringList{"Media (*.avi) (*.avi *.bmp)"});
        QCOMPARE(QtFileDialog::nameFilters(QString()), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestTimers)
#include "tst_timers.moc"
