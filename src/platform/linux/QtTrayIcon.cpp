#include "platform/linux/QtTrayIcon.h"

#include "platform/linux/QtXcb.h"
#include "platform/linux/TrayStandInWindow.h"
#include "platform/linux/X11TrayHostWatcher.h"

#include <QGuiApplication>
#include <QMenu>
#include <QMetaObject>
#include <QSystemTrayIcon>
#include <QtGui/qguiapplication_platform.h>

namespace tarvo {

namespace {

int messageFor(QSystemTrayIcon::ActivationReason reason) {
    switch (reason) {
    case QSystemTrayIcon::Trigger:
        return TrayIcon::kLeftButtonUp;
    case QSystemTrayIcon::DoubleClick:
        return TrayIcon::kLeftDoubleClick;
    case QSystemTrayIcon::Context:
        return TrayIcon::kRightButtonUp;
    case QSystemTrayIcon::MiddleClick:
        return TrayIcon::kMiddleButtonUp;
    case QSystemTrayIcon::Unknown:
        break;
    }
    return 0;
}

} // namespace

QtTrayIcon::QtTrayIcon(QObject* parent)
    : QObject(parent) {}

QtTrayIcon::~QtTrayIcon() = default;

void QtTrayIcon::add(const QIcon& icon, const QString& tip, Listener& listener) {
    iconImage_ = icon;
    tip_ = tip;
    listener_ = &listener;
    if (!icon_) {
        icon_ = new QSystemTrayIcon(this);
        connect(icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
            if (const int message = messageFor(reason); message != 0)
                deliver(message);
        });
    }
    icon_->setIcon(iconImage_);
    icon_->setToolTip(tip_);
    if (standIn_) {
        standIn_->setWindowIcon(iconImage_);
        standIn_->setWindowTitle(tip_);
    }
    if (!watcher_) {
        // Only Qt's X11 platform has a connection to watch the tray host on.
        if (xcb_connection_t* connection = qtXcbConnection()) {
            watcher_ = std::make_unique<X11TrayHostWatcher>(connection);
            connect(watcher_.get(), &X11TrayHostWatcher::hostChanged, this, &QtTrayIcon::placeIcon);
        }
    }
    added_ = true;
    placeIcon();
}

void QtTrayIcon::remove() {
    added_ = false;
    // Hidden rather than destroyed: remove may be called by something a message started, and the
    // windows go with this object.
    if (icon_)
        icon_->hide();
    if (standIn_)
        standIn_->hide();
    watcher_.reset();
    if (embedded_) {
        embedded_ = false;
        emit embeddedChanged(false);
    }
}

void QtTrayIcon::popUp(QMenu& menu, const QPoint& position) {
    menu.exec(position);
}

bool QtTrayIcon::isEmbedded() const {
    return embedded_;
}

QWidget* QtTrayIcon::standInWindow() const {
    return standIn_.get();
}

void QtTrayIcon::placeIcon() {
    if (!added_)
        return;
    const bool trayThere = QSystemTrayIcon::isSystemTrayAvailable();
    if (trayThere) {
        // The icon is only ever shown while a tray is there (Qt docks it when it is shown and does not
        // retry later), so showing it now docks it into this tray. A tray replacing another while the
        // icon is shown is Qt's own business: it docks the shown icon into the newcomer itself.
        icon_->show();
        if (standIn_)
            standIn_->hide();
    } else {
        icon_->hide();
        if (!standIn_) {
            standIn_ = std::make_unique<TrayStandInWindow>(iconImage_, tip_);
            connect(standIn_.get(), &TrayStandInWindow::message, this, &QtTrayIcon::deliver);
        }
        standIn_->show();
    }
    if (trayThere != embedded_) {
        embedded_ = trayThere;
        emit embeddedChanged(embedded_);
    }
}

void QtTrayIcon::deliver(int message) {
    QMetaObject::invokeMethod(
        this,
        [this, message] {
            if (added_)
                listener_->trayMessage(message);
        },
        Qt::QueuedConnection);
}

} // namespace tarvo
