#pragma once

#include "controls/BlackCover.h"
#include "controls/MMControl.h"
#include "controls/MediaSurface.h"
#include "controls/ScreenCovers.h"

#include <QPoint>
#include <QRect>
#include <QWidget>

#include <memory>
#include <optional>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmX;
}
QT_END_NAMESPACE

namespace tarvo {

class ExerciseMedia;
class ExerciseSequencer;
struct SettingsRecord;
class WindowSession;

// The exercise player: the media surface amx (in the picture box Picture1) with the exercise's video
// or picture, the button bar MMControl1 under it, and its title counting the exercise's seconds down.
// With "BlankX" set it is maximised over a black backdrop (picBlack), and black covers go on every
// other monitor; otherwise it keeps its own size, centred.
//
// Where a maximised window goes is the window manager's choice, and the covers are windows it does
// not stack: a cover over the player's own monitor would hide the whole break. So the covers wait
// until the window manager has put the player on screen, and then go on the monitors the player is
// not on, for the rest of the break.
//
// What its gestures do is the exercise break's: a click on the media skips to the next exercise, a
// double click ends the break, Esc typed on the media jumps to the last exercise (the next tick wraps
// to the first), Esc anywhere else, the stop button and the window's close button ask whether to quit;
// previous and next step through the exercises, pause and play stop and restart the countdown.
// Everything can be reached from the keyboard: Tab moves between the media and the buttons, Space
// presses a button, Enter or Space on the media is a click.
class frmX : public QWidget,
             private MediaSurface::Listener,
             private MMControl::Listener,
             private BlackCover::Listener {
    Q_OBJECT

public:
    frmX(const SettingsRecord& settings, ExerciseMedia& media, ExerciseSequencer& sequencer,
         const WindowSession& session, QWidget* parent = nullptr);
    ~frmX() override;

    MediaSurface& surface();

    // A break starts: the media's ground is black, the countdown runs.
    void prepare();
    // Shows the exercise's medium and the player (see ExerciseView::showExercise).
    void showExercise(const QString& file, bool topmost);
    // The break is over.
    void dismiss();
    // Gives the hidden player's window system resources and its last picture back; called outside
    // the player's own event handlers, which a break may end from.
    void releaseWindow();

    // Where a form that is not blanked goes: centred on the screen, but only when its current place
    // is 50 twips or more away from centred either way (a form already about centred stays put).
    static std::optional<QPoint> xLoadMeUp(const QRect& screen, const QRect& frame, double twipsPerPixel);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void surfaceClick() override;
    void surfaceDblClick() override;
    void surfaceKeyPress(int& keyAscii) override;
    void MMControl_PrevClick(bool& Cancel) override;
    void MMControl_NextClick(bool& Cancel) override;
    void MMControl_PlayClick(bool& Cancel) override;
    void MMControl_PauseClick(bool& Cancel) override;
    void MMControl_StopClick(bool& Cancel) override;
    void escapeOnCover() override;

    // Which of the bar's buttons can be pressed while the countdown runs or stands still.
    void showCountdownRunning(bool running);
    void layOut(bool blank);
    // Covers the monitors the player is not on, now if it is on screen already, else once it is.
    void coverOtherMonitors();

    enum class Covers { Down, Awaited, Up };

    std::unique_ptr<Ui::frmX> ui;
    const SettingsRecord& settings_;
    ExerciseMedia& media_;
    ExerciseSequencer& sequencer_;
    const WindowSession& session_;
    ScreenCovers covers_;
    Covers coversState_ = Covers::Down;
    bool blank_ = false;
    bool placed_ = false;
};

} // namespace tarvo
