#include "frmTarvo.h"

#include "Timer.h"
#include "ui_frmTarvo.h"

namespace tarvo {

frmTarvo::frmTarvo(const SettingsRecord& settings, SchedulerState& state, const Clock& clock,
                   ActivityMonitor& monitor, TimerFactory& timers, QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::frmTarvo>())
    , tMinutes_(timers.createTimer())
    , tSeconds_(timers.createTimer())
    , scheduler_(settings, state, clock, monitor, *tMinutes_, *tSeconds_, *this) {
    ui->setupUi(this);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmTarvo::cmdOK_Click);
    // The timers stay off until start-up calls SetTimers.
    tMinutes_->setHandler([this] { scheduler_.tMinutes_Timer(); });
    tSeconds_->setHandler([this] { scheduler_.tSeconds_Timer(); });
}

frmTarvo::~frmTarvo() = default;

void frmTarvo::TarvoMicropause() {
    emit micropauseDue();
}
void frmTarvo::breakTick() {
    emit breakTicked();
}
void frmTarvo::AudibleWarningPre() {
    emit preWarningDue();
}
void frmTarvo::AudibleWarningX() {
    emit exerciseWarningDue();
}
void frmTarvo::showExercisePrompt() {
    emit exercisePromptDue();
}
void frmTarvo::exerciseTick() {
    emit exerciseTicked();
}

void frmTarvo::showExerciseStatus(const QString& text) {
    ui->lblExercise->setText(text);
}
void frmTarvo::showVoluntaryStatus(const QString& text) {
    ui->lblvoluntary->setText(text);
}

void frmTarvo::cmdOK_Click() {
    // Shown as the status panel: OK puts it away again, and it comes back in its normal size.
    setWindowState(Qt::WindowNoState);
    hide();
}

} // namespace tarvo
