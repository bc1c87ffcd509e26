#pragma once

#include "micropause/BreakView.h"
#include "micropause/CProgressBar.h"
#include "micropause/MicropauseBreak.h"
#include "micropause/Scheduler.h"
#include "micropause/SchedulerPort.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <vector>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmTarvo;
}
QT_END_NAMESPACE

namespace tarvo {

class ActivityMonitor;
class BlackCover;
class Clock;
class Timer;
class TimerFactory;
class Warnings;
struct BreakLayout;
struct SchedulerState;
struct SettingsRecord;

// The main form. It is loaded at start-up and stays loaded, hidden, for the whole run. It owns the two
// timers that drive the schedule, the scheduler they drive and the micropause break screen; shown
// from the tray menu, it is the status panel with the next exercise break and the last micropauses.
//
// During a micropause the form is the break screen: the panel picBlack with the message, the countdown
// bar and the Esc hint, either centred on a black screen (with every other monitor blacked out too) or
// on its own at its designed size, above every other window and holding the keyboard so that Esc
// reaches it.
//
// The exercise prompt and the exercise sequencer's tick leave the form as signals, which start-up
// connects to the exercise break: that part re-arms this form's timers and calls its scheduler, so it
// can only be built once the form exists. Connect them directly (the default on the one user-interface
// thread), so that a handover has finished before the tick goes on.
class frmTarvo : public QWidget, public SchedulerPort, public BreakView {
    Q_OBJECT

public:
    frmTarvo(const SettingsRecord& settings, SchedulerState& state, const Clock& clock,
             ActivityMonitor& monitor, TimerFactory& timers, Warnings& warnings, QWidget* parent = nullptr);
    ~frmTarvo() override;

    Scheduler& scheduler() { return scheduler_; }
    MicropauseBreak& micropause() { return break_; }
    CProgressBar& bar() { return bar_; }
    // The break screen and the exercise break switch tSeconds between their ticks and the
    // natural-pause check; an exercise break stops both.
    Timer& tMinutes() { return *tMinutes_; }
    Timer& tSeconds() { return *tSeconds_; }

    // The micropause message, as stored: a doubled "&&" shows as one "&".
    void setWarning(const QString& text);

    // SchedulerPort
    void TarvoMicropause() override;
    void breakTick() override;
    void AudibleWarningPre() override;
    void AudibleWarningX() override;
    void showExercisePrompt() override;
    void exerciseTick() override;
    void showExerciseStatus(const QString& text) override;
    void showVoluntaryStatus(const QString& text) override;

    // BreakView
    void prepareBreak(bool escAllowed) override;
    void presentBreak(bool blank) override;
    void dismissBreak() override;
    void showLastMicropause(const QString& text) override;

signals:
    void exercisePromptDue();
    void exerciseTicked();

public slots:
    void cmdCancel_Click();
    void lblESC_DblClick();
    void cmdOK_Click();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Resize();
    void applyBreakLayout(const BreakLayout& layout, bool blank);
    void setBackground(const QColor& color);

    std::unique_ptr<Ui::frmTarvo> ui;
    Warnings& warnings_;
    std::unique_ptr<Timer> tMinutes_;
    std::unique_ptr<Timer> tSeconds_;
    Scheduler scheduler_;
    CProgressBar bar_;
    MicropauseBreak break_;
    std::vector<QPointer<BlackCover>> covers_;
};

} // namespace tarvo
