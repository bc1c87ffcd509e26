#include "shell/TrayHook.h"

#include "core/TrayIcon.h"
#include "shell/TrayActions.h"
#include "shell/TrayMenu.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace tarvo {

namespace {

// The tray record's tip field: 64 characters with the terminating zero.
constexpr qsizetype kTipLength = 63;

// Sets a flag for the length of a scope, also when a handler leaves by an error.
class FlagScope {
public:
    explicit FlagScope(bool& flag)
        : flag_(flag) {
        flag_ = true;
    }
    ~FlagScope() { flag_ = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& flag_;
};

} // namespace

TrayHook::TrayHook(TrayIcon& icon, TrayMenu& menu, TrayActions& actions, double twipsPerPixelX)
    : icon_(icon)
    , menu_(menu)
    , actions_(actions)
    , twipsPerPixelX_(twipsPerPixelX) {}

double TrayHook::screenTwipsPerPixelX() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return twipsPerPixelX(screen != nullptr ? screen->logicalDotsPerInchX() : 96.0);
}

void TrayHook::addIcon(const QIcon& icon, const QString& tip) {
    icon_.add(icon, tip.left(kTipLength), *this);
}

void TrayHook::removeIcon() {
    icon_.remove();
}

void TrayHook::pichook_MouseMove(int button, int shift, double x, double y) {
    Q_UNUSED(button);
    Q_UNUSED(shift);
    Q_UNUSED(y);
    if (busy_)
        return;
    const FlagScope busy(busy_);
    const long message = std::lround(x / twipsPerPixelX_);
    if (message == TrayIcon::kLeftDoubleClick)
        actions_.LoadMeUp();
    else if (message == TrayIcon::kRightButtonUp)
        popUpMenu();
}

void TrayHook::pichook_KeyDown(int keyCode, int shift) {
    Q_UNUSED(shift);
    if (keyCode == SingleInstance::kShutdownKey)
        actions_.shutdown();
    else
        popUpMenu();
}

void TrayHook::trayMessage(int message) {
    pichook_MouseMove(0, 0, message * twipsPerPixelX_, 0);
}

void TrayHook::keyDown(int keyCode) {
    pichook_KeyDown(keyCode, 0);
}

void TrayHook::popUpMenu() {
    // A menu that is up already is where the user is looking; a second one would only stack on it.
    if (menuUp_)
        return;
    const FlagScope up(menuUp_);
    menu_.LoadMnuX();
    icon_.popUp(menu_.mnuPopup(), QCursor::pos());
}

} // namespace tarvo
