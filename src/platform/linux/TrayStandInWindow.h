#pragma once

#include <QIcon>
#include <QWidget>

class QLabel;

namespace tarvo {

// The program's entry point while the desktop has no notification area: a small ordinary window
// titled like the program, showing its icon and how to reach the menu. Clicks on it reach the program
// as the same mouse messages a click on the tray icon sends: 0x202 left button up, 0x203 left double
// click, 0x205 right button up, 0x208 middle button up. The context-menu key counts as a right click,
// so the menu can be reached without a mouse.
//
// Closing it would leave no way to reach the program, so the window manager's close button only
// minimises it; it never ends the program either (the shut-down item of the menu does).
class TrayStandInWindow : public QWidget {
    Q_OBJECT

public:
    TrayStandInWindow(const QIcon& icon, const QString& title, QWidget* parent = nullptr);

signals:
    // A click on the window, as the tray icon's mouse message.
    void message(int message);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
};

} // namespace tarvo
