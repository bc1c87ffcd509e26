#include "platform/linux/TrayStandInWindow.h"

#include "core/TrayIcon.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>

namespace tarvo {

namespace {

constexpr int kIconSize = 48;

} // namespace

TrayStandInWindow::TrayStandInWindow(const QIcon& icon, const QString& title, QWidget* parent)
    : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("TrayStandInWindow"));
    setWindowTitle(title);
    setWindowIcon(icon);
    setToolTip(title);
    // Only the menu's shut-down item ends the program, never closing a window.
    setAttribute(Qt::WA_QuitOnClose, false);

    auto* picture = new QLabel(this);
    picture->setObjectName(QStringLiteral("imgIcon"));
    picture->setPixmap(icon.pixmap(kIconSize, kIconSize));
    auto* hint = new QLabel(tr("Right-click for the menu"), this);
    hint->setObjectName(QStringLiteral("lblHint"));
    // The labels pass every click on to the window.
    picture->setAttribute(Qt::WA_TransparentForMouseEvents);
    hint->setAttribute(Qt::WA_TransparentForMouseEvents);

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(picture);
    layout->addWidget(hint);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void TrayStandInWindow::mouseReleaseEvent(QMouseEvent* event) {
    switch (event->button()) {
    case Qt::LeftButton:
        emit message(TrayIcon::kLeftButtonUp);
        break;
    case Qt::RightButton:
        emit message(TrayIcon::kRightButtonUp);
        break;
    case Qt::MiddleButton:
        emit message(TrayIcon::kMiddleButtonUp);
        break;
    default:
        QWidget::mouseReleaseEvent(event);
        return;
    }
    event->accept();
}

void TrayStandInWindow::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mouseDoubleClickEvent(event);
        return;
    }
    emit message(TrayIcon::kLeftDoubleClick);
    event->accept();
}

void TrayStandInWindow::contextMenuEvent(QContextMenuEvent* event) {
    // A right click already reported its button's release; only the keyboard's request is new here.
    if (event->reason() != QContextMenuEvent::Keyboard) {
        event->ignore();
        return;
    }
    emit message(TrayIcon::kRightButtonUp);
    event->accept();
}

void TrayStandInWindow::closeEvent(QCloseEvent* event) {
    // Only the user's close (from the window manager) is turned into minimising. A close that the
    // program asks for, such as the application closing its windows as it quits, goes through: refusing
    // that would cancel the quit.
    if (!event->spontaneous()) {
        QWidget::closeEvent(event);
        return;
    }
    event->ignore();
    showMinimized();
}

} // namespace tarvo
