#pragma once

#include "controls/ScreenCovers.h"
#include "engine/MainView.h"
#include "micropause/CProgressBar.h"

#include <QWidget>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmTarvo;
}
QT_END_NAMESPACE

namespace tarvo {

class BreakEngine;
struct BreakLayout;

// The main form, the view of the break engine while it is loaded (MainForm loads it when it is to be
// shown); shown from the tray menu, it is the status panel with the version, the next exercise break
// and the last micropauses.
//
// During a micropause the form is the break screen: the panel picBlack with the message, the countdown
// bar and the Esc hint, either centred on a black screen (with every other monitor blacked out too) or
// on its own at its designed size, above every other window. What it shows and when is the engine's
// decision (MainView); Esc and a double click on the hint go back to the engine.
class frmTarvo : public QWidget, public MainView, private BlackCover::Listener {
    Q_OBJECT

public:
    explicit frmTarvo(QWidget* parent = nullptr);
    ~frmTarvo() override;

    // The engine that the form's events go to; until then Esc and the hint do nothing.
    void attach(BreakEngine& engine);

    // The micropause message, as stored: a doubled "&&" shows as one "&".
    void setWarning(const QString& text);
    // A panel of more to look at, below the status texts (the form takes it); null until one is given.
    void addStatusPanel(std::unique_ptr<QWidget> panel);
    QWidget* statusPanel() const { return statusPanel_; }

    // MainView
    CountdownBar& countdownBar() override { return bar_; }
    void prepareBreak(bool escAllowed) override;
    void presentBreak(bool blank) override;
    void dismissBreak() override;
    void showLastMicropause(const QString& text) override;
    void showExerciseStatus(const QString& text) override;
    void showVoluntaryStatus(const QString& text) override;
    void showActivitySource(const QString& text) override;
    void showPresenceStatus(const QString& text) override;

public slots:
    void cmdCancel_Click();
    void lblESC_DblClick();
    void cmdOK_Click();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void escapeOnCover() override;
    void Form_Resize();
    void applyBreakLayout(const BreakLayout& layout, bool blank);
    void freeSize(); // undoes the fixed size of a break at its own size
    void setBackground(const QColor& color);

    std::unique_ptr<Ui::frmTarvo> ui;
    CProgressBar bar_;
    BreakEngine* engine_ = nullptr;
    ScreenCovers covers_;
    int panelRadius_ = 0; // the corners of picBlack
    QWidget* statusPanel_ = nullptr;
};

} // namespace tarvo
