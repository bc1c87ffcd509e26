#pragma once

#include "core/SingleInstance.h"
#include "core/TrayIcon.h"

class QIcon;
class QString;

namespace tarvo {

class TrayActions;
class TrayMenu;

// pichook, the main form's receiver of the tray icon's mouse messages and of the key codes another
// start of the program sends. The icon's messages arrive the way a mouse move over pichook reports
// them: the message number in X, in twips. A left double click (0x203) opens the options dialog; a
// right button release (0x205) pops the tray menu up where the mouse is, its scheme list freshly
// read; every other message (a single click, a move, a button press) does nothing.
//
// Opening the menu or the dialog runs an event loop, so another message can arrive while the first is
// being handled; a busy flag drops it. The menu going up a second time, from inside the first, would
// only confuse the user.
class TrayHook : public TrayIcon::Listener, public SingleInstance::Listener {
public:
    // `twipsPerPixelX`: twips per pixel across the screen, 1440 / its logical dots per inch
    // (twipsPerPixelX() below).
    TrayHook(TrayIcon& icon, TrayMenu& menu, TrayActions& actions, double twipsPerPixelX);

    // 1440 twips make an inch: 15 per pixel at 96 dots per inch.
    static double twipsPerPixelX(double logicalDotsPerInchX) { return 1440.0 / logicalDotsPerInchX; }
    // The same for the primary screen (needs a QGuiApplication).
    static double screenTwipsPerPixelX();

    // Puts the icon into the notification area with its tool tip, cut to the 63 characters the tray's
    // record holds, and routes its messages to pichook_MouseMove. removeIcon takes it out again.
    void addIcon(const QIcon& icon, const QString& tip);
    void removeIcon();

    void pichook_MouseMove(int button, int shift, double x, double y);
    // kShutdownKey ends the program; any other code pops the menu up as a right click on the icon
    // does. Neither path pops a second menu up while one is up.
    void pichook_KeyDown(int keyCode, int shift);

    // The icon's messages, in twips as a mouse move reports them, and the key codes of later starts.
    void trayMessage(int message) override;
    void keyDown(int keyCode) override;

private:
    void popUpMenu();

    TrayIcon& icon_;
    TrayMenu& menu_;
    TrayActions& actions_;
    double twipsPerPixelX_;
    bool busy_ = false;
    bool menuUp_ = false;
};

} // namespace tarvo
