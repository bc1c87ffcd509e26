#pragma once

#include <QDBusConnection>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace tarvo {

class BannersOff;
class BusProperty;
class ScreenSaverWatch;

// What the desktop's D-Bus services tell about the person at the machine, each followed by the
// service's own signals and read afresh whenever the service (re)appears:
//  - locked: logind's LockedHint of this session (system bus; the session of XDG_SESSION_ID, or of this
//    process), or a screen saver's ActiveChanged (org.freedesktop.ScreenSaver, org.gnome.ScreenSaver);
//  - do not disturb: the Inhibited property of the notification server (org.freedesktop.Notifications,
//    where the server has it, as Plasma's does), or GNOME's notifications with show-banners off, as
//    the desktop portal passes that setting on;
//  - idle inhibited: GNOME's session manager, whose InhibitedActions has the idle flag while an
//    application (a call, a film) keeps the session from idling.
// A service that is missing, answers with the wrong types or does not know the session simply makes
// its condition not hold.
class BusPresence {
public:
    // `changed` is called whenever a condition may have changed.
    BusPresence(const QDBusConnection& session, const QDBusConnection& system, std::function<void()> changed);
    ~BusPresence();
    BusPresence(const BusPresence&) = delete;
    BusPresence& operator=(const BusPresence&) = delete;

    bool locked() const;
    bool doNotDisturb() const;
    bool idleInhibited() const;
    // The services present now, in words, for the start-up report.
    QStringList sourcesPresent() const;

private:
    void findSession();
    // A follower for each service while it is on the bus.
    void appear(const QString& name);
    void vanish(const QString& name);
    void onDisconnection(const QDBusConnection& bus, std::function<void()> drop);

    QDBusConnection session_, system_;
    std::function<void()> changed_;
    std::unique_ptr<BusProperty> lockedHint_, notifications_, sessionManager_;
    std::unique_ptr<ScreenSaverWatch> freedesktopSaver_, gnomeSaver_;
    std::unique_ptr<BannersOff> banners_;
    std::unique_ptr<QObject> context_; // owns the call that looks for the session and the bus watches
};

} // namespace tarvo
