#pragma once

#include <QIcon>
#include <QPoint>
#include <QString>

#include <functional>

namespace tarvo {

class TrayIcon;
class TrayMenu;

// What the tray's mouse messages and the other instance's key codes start; start-up fills these in.
struct TrayHookActions {
    std::function<void()> LoadMeUp; // opens the options dialog; not given until that dialog exists
    std::function<void()> shutdown; // ends the program at once (key code 99)
    // Where the menu goes up: the mouse position, unless a test says otherwise.
    std::function<QPoint()> mousePosition;
};

// pichook, the main form's receiver of the tray icon's mouse messages and of the key codes another
// start of the program sends. The icon's messages arrive the way a mouse move over pichook reports
// them: the message number in X, in twips. A left double click (0x203) opens the options dialog; a
// right button release (0x205) pops the tray menu up where the mouse is, its scheme list freshly
// read; every other message (a single click, a move, a button press) does nothing.
//
// Opening the menu or the dialog runs an event loop, so another message can arrive while the first is
// being handled; a busy flag drops it. The menu going up a second time, from inside the first, would
// only confuse the user.
class TrayHook {
public:
    // `twipsPerPixelX`: twips per pixel across the screen, 1440 / its logical dots per inch
    // (twipsPerPixelX() below).
    TrayHook(TrayIcon& icon, TrayMenu& menu, double twipsPerPixelX, TrayHookActions actions);

    // 1440 twips make an inch: 15 per pixel at 96 dots per inch.
    static double twipsPerPixelX(double logicalDotsPerInchX) { return 1440.0 / logicalDotsPerInchX; }
    // The same for the primary screen (needs a QGuiApplication).
    static double screenTwipsPerPixelX();

    // Puts the icon into the notification area with its tool tip, cut to the 63 characters the tray's
    // record holds, and routes its messages to pichook_MouseMove. removeIcon takes it out again.
    void addIcon(const QIcon& icon, const QString& tip);
    void removeIcon();

    void pichook_MouseMove(int button, int shift, double x, double y);
    // 99 ends the program; any other code pops the menu up as a right click on the icon does. Neither
    // path pops a second menu up while one is up.
    void pichook_KeyDown(int keyCode, int shift);

private:
    void popUpMenu();

    TrayIcon& icon_;
    TrayMenu& menu_;
    double twipsPerPixelX_;
    TrayHookActions actions_;
    bool busy_ = false;
    bool menuUp_ = false;
};

} // namespace tarvo
