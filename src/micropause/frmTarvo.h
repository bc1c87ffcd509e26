#pragma once

#include "Scheduler.h"
#include "SchedulerPort.h"

#include <QWidget>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmTarvo;
}
QT_END_NAMESPACE

namespace tarvo {

class ActivityMonitor;
class Clock;
class Timer;
class TimerFactory;
struct SchedulerState;
struct SettingsRecord;

// The main form. It is loaded at start-up and stays loaded, hidden, for the whole run: it owns the
// two timers that drive the schedule and the scheduler they drive, and, shown from the tray menu, it
// is the status panel with the next exercise break and the last micropauses.
//
// The form is the scheduler's port. It shows the status texts itself; every other handover leaves
// it as a signal, which start-up connects to the part that carries it out (the break screen, the
// warning sounds, the exercise prompt, the exercise sequencer). Signals rather than references break
// a cycle: the exercise break re-arms this form's timers and calls its scheduler, so it can only be
// built once the form exists. Connect them directly (the default on the one user-interface thread),
// so that a handover has finished before the tick goes on.
class frmTarvo : public QWidget, public SchedulerPort {
    Q_OBJECT

public:
    frmTarvo(const SettingsRecord& settings, SchedulerState& state, const Clock& clock,
             ActivityMonitor& monitor, TimerFactory& timers, QWidget* parent = nullptr);
    ~frmTarvo() override;

    Scheduler& scheduler() { return scheduler_; }
    // The break screen and the exercise break switch tSeconds between their ticks and the
    // natural-pause check; an exercise break stops both.
    Timer& tMinutes() { return *tMinutes_; }
    Timer& tSeconds() { return *tSeconds_; }

    // SchedulerPort
    void TarvoMicropause() override;
    void breakTick() override;
    void AudibleWarningPre() override;
    void AudibleWarningX() override;
    void showExercisePrompt() override;
    void exerciseTick() override;
    void showExerciseStatus(const QString& text) override;
    void showVoluntaryStatus(const QString& text) override;

signals:
    void micropauseDue();
    void breakTicked();
    void preWarningDue();
    void exerciseWarningDue();
    void exercisePromptDue();
    void exerciseTicked();

private slots:
    void cmdOK_Click();

private:
    std::unique_ptr<Ui::frmTarvo> ui;
    std::unique_ptr<Timer> tMinutes_;
    std::unique_ptr<Timer> tSeconds_;
    Scheduler scheduler_;
};

} // namespace tarvo
