#include "platform/linux/DesktopPresence.h"

#include "platform/linux/BusPresence.h"
#include "platform/linux/X11FullScreenWatcher.h"

namespace tarvo {

DesktopPresence::DesktopPresence(const QDBusConnection& session, const QDBusConnection& system,
                                 bool followWindows)
    : bus_(std::make_unique<BusPresence>(session, system, [this] { changed(); })) {
    if (followWindows)
        window_ = X11FullScreenWatcher::attach([this] { changed(); });
}

DesktopPresence::~DesktopPresence() = default;

void DesktopPresence::changed() {
    if (listener_)
        listener_->presenceChanged();
}

bool DesktopPresence::holds(PresenceCondition condition) const {
    switch (condition) {
    case PresenceCondition::Locked:
        return bus_->locked();
    case PresenceCondition::FullScreen:
        return window_ && window_->fullScreen();
    case PresenceCondition::DoNotDisturb:
        return bus_->doNotDisturb();
    case PresenceCondition::IdleInhibited:
        return bus_->idleInhibited();
    }
    return false;
}

QString DesktopPresence::report() const {
    QStringList sources = bus_->sourcesPresent();
    if (window_ && window_->windowManager())
        sources << QStringLiteral("the window manager");
    return QStringLiteral("tarvo: presence followed through %1")
        .arg(sources.isEmpty() ? QStringLiteral("nothing (breaks are never held)")
                               : sources.join(QStringLiteral(", ")));
}

} // namespace tarvo
