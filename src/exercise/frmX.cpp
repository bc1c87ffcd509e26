#include "exercise/frmX.h"

#include "controls/ExerciseMedia.h"
#include "core/WindowSession.h"
#include "engine/ExerciseSequencer.h"
#include "settings/SettingsRecord.h"
#include "ui_frmX.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QToolButton>
#include <QWindow>

#include <cmath>

namespace tarvo {

namespace {

constexpr int kMargin = 10;
constexpr int kBarGap = 8;
// The picture box keeps at least the built-in media's size, so the player does not jump about
// between a picture, a small video and a file that shows nothing.
const QSize kLeastPicture(320, 240);
constexpr double kMoveThresholdTwips = 50;

} // namespace

frmX::frmX(const SettingsRecord& settings, ExerciseMedia& media, ExerciseSequencer& sequencer,
           const WindowSession& session, QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::frmX>())
    , settings_(settings)
    , media_(media)
    , sequencer_(sequencer)
    , session_(session) {
    ui->setupUi(this);
    ui->amx->setListener(this);
    ui->MMControl1->setListener(this);
    ui->picBlack->lower();
    ui->picBlack->hide();
    // Black by palette rather than by style sheet, which would bring Qt's style sheet engine along,
    // with parsed rules and caches, for the player's whole life.
    for (QWidget* black : {static_cast<QWidget*>(ui->Picture1), static_cast<QWidget*>(ui->picBlack)}) {
        QPalette p = black->palette();
        p.setColor(QPalette::Window, Qt::black);
        black->setPalette(p);
        black->setAutoFillBackground(true);
    }
}

frmX::~frmX() = default;

MediaSurface& frmX::surface() {
    return *ui->amx;
}

void frmX::prepare() {
    QPalette p = ui->amx->palette();
    p.setColor(QPalette::Window, Qt::black);
    ui->amx->setPalette(p);
    showCountdownRunning(true);
    ui->MMControl1->button(MMControl::Next)->setFocus();
}

void frmX::showExercise(const QString& file, bool topmost) {
    // The window's flags and screen first: changing them re-creates its native windows, and the video
    // is about to be opened inside the media surface's window.
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (topmost && !(windowFlags() & Qt::WindowStaysOnTopHint))
        setWindowFlag(Qt::WindowStaysOnTopHint, true);
    if (!isVisible())
        setScreen(screen);
    const QString extension = media_.ShowExerciseMedia(*ui->amx, file, settings_.ViewAm);
    // A picture that could not be read leaves the surface hidden; a video shows in it.
    ui->amx->setVisible(extension == QLatin1String(".avi") || ui->amx->hasPicture());
    const bool blank = settings_.BlankX != 0;
    layOut(blank);
    if (blank) {
        // The window manager of a Wayland session need not maximise an X11 window (sway tiles it beside
        // the user's windows instead, leaving them in sight); full screen covers the monitor there, and
        // over the black backdrop it looks the same.
        setWindowState(session_.wayland() ? Qt::WindowFullScreen : Qt::WindowMaximized);
    } else {
        setWindowState(Qt::WindowNoState);
        covers_.uncover();
        coversState_ = Covers::Down;
        // Placed once, as the player is loaded; from then on it is where the user left it.
        if (!placed_) {
            const double twipsPerPixel = 1440.0 / screen->logicalDotsPerInchX();
            if (const auto centred = xLoadMeUp(screen->availableGeometry(), frameGeometry(), twipsPerPixel))
                move(*centred);
        }
    }
    placed_ = true;
    show();
    raise();
    if (blank && coversState_ == Covers::Down)
        coverOtherMonitors();
    if (extension == QLatin1String(".avi"))
        media_.PlayVideo();
}

void frmX::dismiss() {
    covers_.uncover();
    coversState_ = Covers::Down;
    if (windowHandle())
        windowHandle()->removeEventFilter(this);
    hide();
    setWindowFlag(Qt::WindowStaysOnTopHint, false);
    setWindowState(Qt::WindowMinimized);
}

void frmX::releaseWindow() {
    if (isVisible())
        return; // a new break has shown it again
    // A hidden window keeps its backing store, as large as the screen for a blanked player, and a break
    // that ended on a picture keeps that picture decoded, for the rest of the run; the next break
    // creates the window anew, where this one was, and shows its own exercises.
    surface().clearPicture();
    if (testAttribute(Qt::WA_WState_Created))
        destroy();
}

std::optional<QPoint> frmX::xLoadMeUp(const QRect& screen, const QRect& frame, double twipsPerPixel) {
    const QPoint centred(screen.x() + static_cast<int>(std::lround((screen.width() - frame.width()) / 2.0)),
                         screen.y() +
                             static_cast<int>(std::lround((screen.height() - frame.height()) / 2.0)));
    const double offX = std::abs(frame.x() - centred.x()) * twipsPerPixel;
    const double offY = std::abs(frame.y() - centred.y()) * twipsPerPixel;
    if (offX < kMoveThresholdTwips && offY < kMoveThresholdTwips)
        return std::nullopt;
    return centred;
}

void frmX::layOut(bool blank) {
    const QSize media = ui->amx->size();
    const QSize picture = media.expandedTo(kLeastPicture);
    const QSize bar = ui->MMControl1->sizeHint();
    const QSize content(std::max(picture.width(), bar.width()), picture.height() + kBarGap + bar.height());
    blank_ = blank;
    if (blank) {
        setMinimumSize(0, 0);
        setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    } else {
        setFixedSize(content + QSize(2 * kMargin, 2 * kMargin));
    }
    ui->picBlack->setVisible(blank);
    ui->picBlack->setGeometry(rect());
    const QSize area = blank ? size() : content + QSize(2 * kMargin, 2 * kMargin);
    const QPoint origin((area.width() - content.width()) / 2, (area.height() - content.height()) / 2);
    ui->Picture1->setGeometry(QRect(origin + QPoint((content.width() - picture.width()) / 2, 0), picture));
    ui->amx->move((picture.width() - media.width()) / 2, (picture.height() - media.height()) / 2);
    ui->MMControl1->setGeometry(
        QRect(origin + QPoint((content.width() - bar.width()) / 2, picture.height() + kBarGap), bar));
}

void frmX::coverOtherMonitors() {
    QWindow* window = windowHandle();
    if (!window->isExposed()) {
        // Shown for the first time: the window manager has placed it by the time it is exposed.
        coversState_ = Covers::Awaited;
        window->installEventFilter(this);
        return;
    }
    covers_.cover(ScreenCovers::screenShowing(geometry()), *this);
    coversState_ = Covers::Up;
}

bool frmX::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose && watched == windowHandle() && coversState_ == Covers::Awaited &&
        windowHandle()->isExposed()) {
        watched->removeEventFilter(this);
        coverOtherMonitors();
    }
    return QWidget::eventFilter(watched, event);
}

void frmX::showCountdownRunning(bool running) {
    ui->MMControl1->setButtonEnabled(MMControl::Play, !running);
    ui->MMControl1->setButtonEnabled(MMControl::Pause, running);
    ui->MMControl1->setButtonEnabled(MMControl::Next, running);
}

void frmX::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // A maximised player learns its size from the window manager only now.
    layOut(blank_);
    covers_.follow(geometry());
}

void frmX::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    covers_.follow(geometry());
}

void frmX::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QWidget::keyPressEvent(event);
        return;
    }
    bool Cancel = true;
    MMControl_StopClick(Cancel);
}

void frmX::closeEvent(QCloseEvent* event) {
    // The program closing its windows as it ends goes through; the user's close is the stop button.
    if (!event->spontaneous()) {
        QWidget::closeEvent(event);
        return;
    }
    event->ignore();
    bool Cancel = true;
    MMControl_StopClick(Cancel);
}

void frmX::surfaceClick() {
    sequencer_.amx_Click();
}

void frmX::surfaceDblClick() {
    sequencer_.amx_DblClick();
}

void frmX::surfaceKeyPress(int& keyAscii) {
    if (keyAscii == 27)
        sequencer_.amx_KeyPressEsc();
    else if (keyAscii == 13 || keyAscii == 32)
        sequencer_.amx_Click();
    else
        return;
    keyAscii = 0;
}

void frmX::MMControl_PrevClick(bool& Cancel) {
    Cancel = true;
    sequencer_.LoadPrevExercise();
}

void frmX::MMControl_NextClick(bool& Cancel) {
    Cancel = true;
    sequencer_.amx_Click();
}

void frmX::MMControl_PlayClick(bool& Cancel) {
    Cancel = true;
    sequencer_.togglePause();
    showCountdownRunning(!ui->MMControl1->isButtonEnabled(MMControl::Pause));
}

void frmX::MMControl_PauseClick(bool& Cancel) {
    MMControl_PlayClick(Cancel);
}

void frmX::MMControl_StopClick(bool& Cancel) {
    Cancel = true;
    sequencer_.askToQuit();
    showCountdownRunning(true); // the question always leaves the countdown running
}

void frmX::escapeOnCover() {
    bool Cancel = true;
    MMControl_StopClick(Cancel);
}

} // namespace tarvo
