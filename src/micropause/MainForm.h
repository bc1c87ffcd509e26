#pragma once

#include "engine/MainView.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace tarvo {

class BreakEngine;
class frmTarvo;

// The main form as the engine and the tray menu see it for the whole run. The form itself, frmTarvo,
// is loaded only while it is wanted on the screen, as the break screen or as the status panel, and
// unloaded once it is hidden again: between breaks the program keeps none of its widgets, style
// sheets or countdown picture. What it would show meanwhile (the message, the status texts) is kept
// here, and a form that is loaded shows it from the start, centred on the primary screen.
class MainForm : public QObject, public MainView {
public:
    MainForm();
    ~MainForm() override;

    // The engine that the form's events go to.
    void attach(BreakEngine& engine);
    // Runs each time the form has been unloaded (the program gives the freed memory back).
    void setAfterUnload(std::function<void()> afterUnload) { afterUnload_ = std::move(afterUnload); }

    // The micropause message, as stored (a doubled "&&" shows as one "&").
    void setWarning(const QString& text);
    // "Status...": the form as a plain window with the status texts.
    void showStatus();

    // The form while it is loaded (for tests), null otherwise.
    frmTarvo* form() const { return form_.get(); }

    // MainView
    CountdownBar& countdownBar() override;
    void prepareBreak(bool escAllowed) override;
    void presentBreak(bool blank) override;
    void dismissBreak() override;
    void showLastMicropause(const QString& text) override;
    void showExerciseStatus(const QString& text) override;
    void showVoluntaryStatus(const QString& text) override;
    void showActivitySource(const QString& text) override;
    void showPresenceStatus(const QString& text) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    frmTarvo& loaded();
    void unloadWhenHidden();

    std::unique_ptr<frmTarvo> form_;
    BreakEngine* engine_ = nullptr;
    // From prepareBreak to dismissBreak: a break screen that is minimised hides, but its countdown runs
    // on in the form to the break's end.
    bool breakRunning_ = false;
    QString warning_;
    // Null until the engine first writes them: the form keeps its designed captions until then.
    QString lastMicropause_, exerciseStatus_, voluntaryStatus_, activitySource_, presenceStatus_;
    std::function<void()> afterUnload_;
};

} // namespace tarvo
