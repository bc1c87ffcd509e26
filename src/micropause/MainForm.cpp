#include "micropause/MainForm.h"

#include "micropause/frmTarvo.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMetaObject>
#include <QScreen>

namespace tarvo {

namespace {

void showIfWritten(const QString& text, frmTarvo* form, void (frmTarvo::*show)(const QString&)) {
    if (form && !text.isNull())
        (form->*show)(text);
}

} // namespace

MainForm::MainForm() = default;

MainForm::~MainForm() = default;

void MainForm::attach(BreakEngine& engine) {
    engine_ = &engine;
    if (form_)
        form_->attach(engine);
}

void MainForm::setWarning(const QString& text) {
    warning_ = text;
    if (form_)
        form_->setWarning(text);
}

void MainForm::showStatus() {
    frmTarvo& form = loaded();
    form.setWindowState(Qt::WindowNoState);
    form.show();
}

frmTarvo& MainForm::loaded() {
    if (form_)
        return *form_;
    form_ = std::make_unique<frmTarvo>();
    frmTarvo* form = form_.get();
    if (engine_)
        form->attach(*engine_);
    form->setWarning(warning_);
    showIfWritten(lastMicropause_, form, &frmTarvo::showLastMicropause);
    showIfWritten(exerciseStatus_, form, &frmTarvo::showExerciseStatus);
    showIfWritten(voluntaryStatus_, form, &frmTarvo::showVoluntaryStatus);
    showIfWritten(activitySource_, form, &frmTarvo::showActivitySource);
    showIfWritten(presenceStatus_, form, &frmTarvo::showPresenceStatus);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->geometry();
        form->move(area.x() + (area.width() - form->width()) / 2,
                   area.y() + (area.height() - form->height()) / 2);
    }
    form->installEventFilter(this);
    // A form loaded for a break that could not start (its bar refused the length) goes again.
    unloadWhenHidden();
    return *form;
}

void MainForm::unloadWhenHidden() {
    // Queued: the form may be hiding inside one of its own handlers, and what hid it may show it again
    // before the event loop comes back (a break over the status panel hides and re-creates it).
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!form_ || breakRunning_ || form_->isVisible())
                return;
            form_.reset();
            if (afterUnload_)
                afterUnload_();
        },
        Qt::QueuedConnection);
}

bool MainForm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == form_.get() && event->type() == QEvent::Hide)
        unloadWhenHidden();
    return QObject::eventFilter(watched, event);
}

CountdownBar& MainForm::countdownBar() {
    return loaded().countdownBar();
}

void MainForm::prepareBreak(bool escAllowed) {
    breakRunning_ = true;
    loaded().prepareBreak(escAllowed);
}

void MainForm::presentBreak(bool blank) {
    loaded().presentBreak(blank);
}

void MainForm::dismissBreak() {
    breakRunning_ = false;
    loaded().dismissBreak();
    unloadWhenHidden();
}

void MainForm::showLastMicropause(const QString& text) {
    lastMicropause_ = text;
    showIfWritten(text, form_.get(), &frmTarvo::showLastMicropause);
}

void MainForm::showExerciseStatus(const QString& text) {
    exerciseStatus_ = text;
    showIfWritten(text, form_.get(), &frmTarvo::showExerciseStatus);
}

void MainForm::showVoluntaryStatus(const QString& text) {
    voluntaryStatus_ = text;
    showIfWritten(text, form_.get(), &frmTarvo::showVoluntaryStatus);
}

void MainForm::showActivitySource(const QString& text) {
    activitySource_ = text;
    showIfWritten(text, form_.get(), &frmTarvo::showActivitySource);
}

void MainForm::showPresenceStatus(const QString& text) {
    presenceStatus_ = text;
    showIfWritten(text, form_.get(), &frmTarvo::showPresenceStatus);
}

} // namespace tarvo
