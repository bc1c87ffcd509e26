#include "exercise/frmChkExercise.h"

#include "core/WindowSession.h"
#include "engine/ExerciseSequencer.h"
#include "ui_frmChkExercise.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QLineEdit>
#include <QScreen>
#include <QWindow>

namespace tarvo {

namespace {
// The spinner's bounds; any whole number may be typed.
constexpr int kLeastMinutes = 1;
constexpr int kMostMinutes = 120;
} // namespace

frmChkExercise::frmChkExercise(ExerciseSequencer& sequencer, WindowSession& session, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::WindowStaysOnTopHint)
    , ui(std::make_unique<Ui::frmChkExercise>())
    , sequencer_(sequencer) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    // Shown without activating: whatever the user is typing in keeps the keyboard. Where the window
    // manager gives every new window the keyboard (sway), the prompt takes none at all until the user
    // clicks into it.
    setAttribute(Qt::WA_ShowWithoutActivating);
    if (session.wayland()) {
        setWindowFlag(Qt::WindowDoesNotAcceptFocus);
        session.offerNoFocus(*this);
    }
    for (QWidget* child : findChildren<QWidget*>())
        child->installEventFilter(this);
    // The minutes field is the list's own line edit, which no label can point at; the spinner's arrows
    // take their names from it.
    ui->cmbMinutes->lineEdit()->setAccessibleName(tr("Minutes to postpone"));
    ui->UpDown1->setBuddy(ui->cmbMinutes->lineEdit());
    ui->UpDown1->setRange(kLeastMinutes, kMostMinutes);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmChkExercise::cmdOK_Click);
    connect(ui->cmdWait, &QPushButton::clicked, this, &frmChkExercise::cmdWait_Click);
    connect(ui->cmbMinutes->lineEdit(), &QLineEdit::returnPressed, this, &frmChkExercise::cmdWait_Click);
    Form_Load();
}

frmChkExercise::~frmChkExercise() = default;

bool frmChkExercise::eventFilter(QObject* watched, QEvent* event) {
    // A click into the prompt is the user turning to it: from then on it takes the keyboard like any
    // window (the flag changes on the window in place, without hiding it).
    if (event->type() == QEvent::MouseButtonPress && windowHandle() &&
        windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus)) {
        windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus, false);
        activateWindow();
    }
    return QWidget::eventFilter(watched, event);
}

void frmChkExercise::Form_Load() {
    ui->cmbMinutes->setEditText(sequencer_.promptLoaded());
    adjustSize();
    // Where the user is, at the bottom right of the screen, like a notification.
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect area = screen->availableGeometry();
    move(area.right() - frameGeometry().width() - 16, area.bottom() - frameGeometry().height() - 16);
}

void frmChkExercise::cmdOK_Click() {
    sequencer_.exerciseNowFromPrompt();
    close();
}

void frmChkExercise::cmdWait_Click() {
    sequencer_.later(ui->cmbMinutes->currentText());
    close();
}

void frmChkExercise::closeEvent(QCloseEvent* event) {
    sequencer_.promptUnloaded(); // Form_Unload
    QWidget::closeEvent(event);
}

} // namespace tarvo
