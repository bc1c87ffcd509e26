#include "micropause/frmTarvo.h"

#include "core/ProgramInfo.h"
#include "engine/BreakEngine.h"
#include "micropause/BreakLayout.h"
#include "micropause/PictureBox.h"
#include "ui_frmTarvo.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

namespace tarvo {

namespace {

// Calm colours for the break: a deep slate panel, soft light text, a teal bar on a darker track.
const QColor kPanel(0x1d, 0x28, 0x30);
const QColor kMessage(0xee, 0xf3, 0xf5);
const QColor kHint(0x8d, 0xa1, 0xad);
constexpr OleColor kBarLit = 0x00AABA5Eu;   // RGB 94, 186, 170
constexpr OleColor kBarTrack = 0x00473D2Du; // RGB 45, 61, 71

void setTextColor(QWidget& widget, const QColor& color) {
    QPalette p = widget.palette();
    p.setColor(QPalette::WindowText, color);
    widget.setPalette(p);
}

// Label captions treat "&" as the mark of an access key, so a literal ampersand is written "&&".
QString captionText(const QString& caption) {
    QString out;
    out.reserve(caption.size());
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] == QLatin1Char('&') && i + 1 < caption.size())
            ++i;
        out += caption[i];
    }
    return out;
}

} // namespace

frmTarvo::frmTarvo(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::frmTarvo>()) {
    ui->setupUi(this);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmTarvo::cmdOK_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmTarvo::cmdCancel_Click);
    ui->lblESC->installEventFilter(this);
    ui->picBlack->installEventFilter(this);

    // Colours by palette and the panel painted here, not by style sheets: a style sheet brings Qt's
    // style sheet engine along, with parsed rules and caches that outlive the form.
    setTextColor(*ui->lblWarning, kMessage);
    setTextColor(*ui->lblESC, kHint);
    ui->picPB->setFrameShape(QFrame::NoFrame);
    bar_.setCanvas(ui->picPB);
    bar_.setForeColor(kBarLit);
    bar_.setBackColor(kBarTrack);
    connect(ui->picPB, &PictureBox::Resize, this, [this] { bar_.ResizeEx(); });
    applyBreakLayout(designedBreakLayout(), false);
    ui->lblVersion->setText(QLatin1String(kVersionText));
}

frmTarvo::~frmTarvo() = default;

void frmTarvo::attach(BreakEngine& engine) {
    engine_ = &engine;
}

void frmTarvo::setWarning(const QString& text) {
    ui->lblWarning->setText(captionText(text));
}

void frmTarvo::addStatusPanel(std::unique_ptr<QWidget> panel) {
    statusPanel_ = panel.release();
    ui->layStatus->insertWidget(ui->layStatus->indexOf(ui->lblActivity) + 1, statusPanel_);
    adjustSize();
}

void frmTarvo::showExerciseStatus(const QString& text) {
    ui->lblExercise->setText(text);
}
void frmTarvo::showVoluntaryStatus(const QString& text) {
    ui->lblvoluntary->setText(text);
}
void frmTarvo::showActivitySource(const QString& text) {
    ui->lblActivity->setText(text);
}
void frmTarvo::showPresenceStatus(const QString& text) {
    ui->lblPresence->setText(text);
}
void frmTarvo::showLastMicropause(const QString& text) {
    ui->lbltarvo->setText(text);
}

void frmTarvo::applyBreakLayout(const BreakLayout& l, bool blank) {
    ui->picBlack->resize(l.panel);
    ui->layPanel->setContentsMargins(l.margin, l.margin / 2, l.margin, l.margin / 2);
    ui->layPanel->setSpacing(l.margin / 2);
    QFont message = font();
    message.setPixelSize(l.messagePx);
    ui->lblWarning->setFont(message);
    QFont hint = font();
    hint.setPixelSize(l.hintPx);
    ui->lblESC->setFont(hint);
    ui->picPB->setFixedHeight(l.barHeight);
    // Alone at its designed size the panel is the whole window; on a blanked screen it floats, rounded.
    panelRadius_ = blank ? l.margin / 3 : 0;
    ui->picBlack->update();
}

void frmTarvo::setBackground(const QColor& color) {
    setAutoFillBackground(color.isValid());
    QPalette p = palette();
    p.setColor(QPalette::Window,
               color.isValid() ? color : QGuiApplication::palette().color(QPalette::Window));
    setPalette(p);
}

void frmTarvo::prepareBreak(bool escAllowed) {
    ui->pnlStatus->hide();
    ui->cmdOK->hide();
    ui->picPB->show();
    ui->lblESC->setVisible(escAllowed);
}

void frmTarvo::presentBreak(bool blank) {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const BreakLayout layout = blank ? breakLayoutFor(screen->geometry().size()) : designedBreakLayout();
    applyBreakLayout(layout, blank);
    // The status panel may be open as an ordinary window: changing the flags hides and re-creates it,
    // and it is shown again below as the break.
    const Qt::WindowFlags breakFlags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    if (windowFlags() != breakFlags)
        setWindowFlags(breakFlags);
    setScreen(screen);
    if (blank) {
        setBackground(Qt::black);
        ui->picBlack->hide();
        freeSize();
        setGeometry(screen->geometry());
        setWindowState(Qt::WindowFullScreen);
        Form_Resize();
        covers_.cover(screen, *this);
    } else {
        setBackground(kPanel);
        setWindowState(Qt::WindowNoState);
        const QRect area = screen->availableGeometry();
        setGeometry(QRect(area.x() + (area.width() - layout.panel.width()) / 2,
                          area.y() + (area.height() - layout.panel.height()) / 2, layout.panel.width(),
                          layout.panel.height()));
        // A fixed size says what the panel is: a window that is not to be resized. Tiling window
        // managers (sway, with XWayland's windows) float such a window at its size instead of tiling
        // it into the user's workspace.
        setFixedSize(layout.panel);
        Form_Resize();
    }
    show();
    ui->picBlack->show();
    raise();
    activateWindow();
    // A blanked break covers every screen, and Esc must reach it even when the window manager keeps
    // the focus elsewhere; the grab ends with the break, and the window the user was typing in has the
    // keyboard again. A break at its own size leaves the rest of the desktop usable: it takes the
    // focus, and a click into another window takes it back.
    if (blank)
        grabKeyboard();
    repaint();
}

void frmTarvo::freeSize() {
    setMinimumSize(0, 0);
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

void frmTarvo::dismissBreak() {
    releaseKeyboard();
    covers_.uncover();
    lower();
    hide();
    setWindowFlags(Qt::Window);
    setWindowState(Qt::WindowNoState);
    freeSize();
    setBackground(QColor());
    ui->picBlack->hide();
    ui->picPB->hide();
    ui->pnlStatus->show();
    ui->cmdOK->show();
    ui->lblESC->hide();
    adjustSize();
}

void frmTarvo::escapeOnCover() {
    cmdCancel_Click();
}

void frmTarvo::cmdCancel_Click() {
    if (engine_)
        engine_->micropause().cmdCancel_Click();
}

void frmTarvo::lblESC_DblClick() {
    cmdCancel_Click();
}

void frmTarvo::cmdOK_Click() {
    // Shown as the status panel: OK puts it away again, and it comes back in its normal size.
    setWindowState(Qt::WindowNoState);
    hide();
}

void frmTarvo::Form_Resize() {
    if (windowState() & Qt::WindowMinimized) {
        hide();
        return;
    }
    ui->picBlack->move((width() - ui->picBlack->width()) / 2, (height() - ui->picBlack->height()) / 2);
}

void frmTarvo::keyPressEvent(QKeyEvent* event) {
    // Esc is the form's cancel key, as a dialog's Cancel button would be.
    if (event->key() == Qt::Key_Escape) {
        cmdCancel_Click();
        return;
    }
    QWidget::keyPressEvent(event);
}

void frmTarvo::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Form_Resize();
    covers_.follow(geometry());
}

void frmTarvo::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    covers_.follow(geometry());
}

void frmTarvo::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        Form_Resize();
}

bool frmTarvo::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui->picBlack && event->type() == QEvent::Paint) {
        QPainter painter(ui->picBlack);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(kPanel);
        painter.drawRoundedRect(ui->picBlack->rect(), panelRadius_, panelRadius_);
        return true;
    }
    if (watched == ui->lblESC && event->type() == QEvent::MouseButtonDblClick) {
        lblESC_DblClick();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace tarvo
