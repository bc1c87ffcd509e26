#pragma once

#include "core/TrayIcon.h"

#include <QIcon>
#include <QObject>
#include <QPointer>

#include <memory>

class QSystemTrayIcon;

namespace tarvo {

class TrayStandInWindow;
class X11TrayHostWatcher;

// The notification-area icon on QSystemTrayIcon: a StatusNotifierItem where the desktop offers one,
// the XEmbed system tray otherwise. Qt's activation reasons become the mouse messages: Trigger 0x202,
// DoubleClick 0x203, Context 0x205, MiddleClick 0x208 (Qt reports the right button on press; the
// message stands for "right button up", the moment the menu is due). A double click reports Trigger
// first, then DoubleClick.
//
// Messages are delivered from the event loop, never from inside the tray's own mouse handling, so that
// whatever a message starts (a menu with its own event loop, the shut-down that removes the icon) runs
// while no handler of the icon is on the stack.
//
// Without a tray the stand-in window (TrayStandInWindow) shows instead and sends the same messages.
// On X11 an X11TrayHostWatcher reports a tray host arriving or leaving, and the icon and the stand-in
// change places at once: no polling. Elsewhere (Wayland, the offscreen platform) whether a tray is there is
// decided once, when the icon is added.
class QtTrayIcon : public QObject, public TrayIcon {
    Q_OBJECT

public:
    explicit QtTrayIcon(QObject* parent = nullptr);
    ~QtTrayIcon() override;

    void add(const QIcon& icon, const QString& tip, Listener& listener) override;
    void remove() override;
    void popUp(QMenu& menu, const QPoint& position) override;
    bool isEmbedded() const override;

    // The stand-in window, null until the first time it is needed.
    QWidget* standInWindow() const;

signals:
    // The icon went into a notification area or came out of it.
    void embeddedChanged(bool embedded);

private:
    void placeIcon();
    void deliver(int message);

    QSystemTrayIcon* icon_ = nullptr; // a child of this object
    std::unique_ptr<TrayStandInWindow> standIn_;
    std::unique_ptr<X11TrayHostWatcher> watcher_;
    Listener* listener_ = nullptr;
    QIcon iconImage_;
    QString tip_;
    bool added_ = false;
    bool embedded_ = false;
};

} // namespace tarvo
