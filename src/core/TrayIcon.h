#pragma once

#include <QPoint>
#include <QString>

class QIcon;
class QMenu;

namespace tarvo {

// The icon in the notification area. Mouse events on it reach the program as the classic mouse
// message numbers: 0x202 left button up (a single click), 0x203 left double click, 0x205 right button
// up, 0x208 middle button up. A double click delivers 0x202 before 0x203.
//
// Where the desktop has no notification area, a small window titled "Tarvo Micropause" with the icon
// stands in for it and offers the same menu; it gives way to the icon as soon as a notification area
// appears.
class TrayIcon {
public:
    // The mouse messages.
    static constexpr int kLeftButtonUp = 0x202;
    static constexpr int kLeftDoubleClick = 0x203;
    static constexpr int kRightButtonUp = 0x205;
    static constexpr int kMiddleButtonUp = 0x208;

    // Where the icon's mouse messages go. They arrive from the event loop, never from inside the icon's
    // own event handling, and may arrive while a menu that popUp showed is still open.
    class Listener {
    public:
        virtual void trayMessage(int message) = 0;

    protected:
        ~Listener() = default;
    };

    virtual ~TrayIcon() = default;

    // Adds the icon with its tool tip; the listener receives its mouse messages until it is removed.
    virtual void add(const QIcon& icon, const QString& tip, Listener& listener) = 0;
    // Removes the icon (and the stand-in window).
    virtual void remove() = 0;
    // Pops the menu up at a screen position and returns when it has closed (or at once in tests).
    virtual void popUp(QMenu& menu, const QPoint& position) = 0;
    // Whether the icon currently sits in a notification area (false while the stand-in window shows).
    virtual bool isEmbedded() const = 0;
};

} // namespace tarvo
