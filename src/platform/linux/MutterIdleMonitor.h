#pragma once

#include "platform/linux/IdleNotificationMonitor.h"

#include <QDBusConnection>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class QDBusServiceWatcher;

namespace tarvo {

class MutterIdleMonitorProxy;

// Activity from GNOME's idle monitor (org.gnome.Mutter.IdleMonitor on the session bus), which GNOME's
// compositor offers on Wayland as well as on X11. On Wayland it is the only one who sees all input.
//
// Two watches stand for IdleNotificationMonitor's two notifications: an idle watch of kIdleAfter ms,
// which fires each time the user has been idle that long, and after each of its firings a user-active
// watch, which fires once at the next input and is then gone. Nothing is polled: while the user
// works, or while they are away, no message passes at all.
//
// Calls are asynchronous. The service answers a call before it fires the watch the call created, yet a
// firing can be handed on by Qt before that answer (see addWatch): it is kept until the answer names
// its watch. The watches are the service's to drop when this process leaves the bus; they are
// withdrawn explicitly when watching stops.
//
// The monitor counts as lost when the service leaves the bus (its compositor ended) or refuses a watch.
class MutterIdleMonitor : public IdleNotificationMonitor {
public:
    static constexpr char kService[] = "org.gnome.Mutter.IdleMonitor";

    // Whether the bus has GNOME's idle monitor on it.
    static bool offered(const QDBusConnection& bus);

    MutterIdleMonitor(const QDBusConnection& bus, const Clock& clock);
    ~MutterIdleMonitor() override;
    MutterIdleMonitor(const MutterIdleMonitor&) = delete;
    MutterIdleMonitor& operator=(const MutterIdleMonitor&) = delete;

    QString description() const override;
    QString lostReason() const override { return lost_; }

    // Watch firings that have reached this process: what the monitor costs, for the tests.
    std::uint64_t firings() const { return firings_; }

private:
    void startWatching() override;
    void stopWatching() override;

    void watchFired(std::uint32_t id);
    // What a firing means, once its watch is known.
    void fired(std::uint32_t id);
    // Adds a watch; `done` gets its number unless watching has stopped or restarted meanwhile, in which
    // case the watch is removed again at once.
    void addWatch(const QString& method, const QVariantList& arguments,
                  std::function<void(std::uint32_t)> done);
    void removeWatch(std::uint32_t& id);
    void lose(const QString& reason);

    std::unique_ptr<MutterIdleMonitorProxy> proxy_;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    std::uint32_t idleWatch_ = 0;
    std::uint32_t activeWatch_ = 0;
    bool activeAsked_ = false; // a user-active watch is asked for or in place
    unsigned round_ = 0;       // counts the starts, so that late answers of an earlier round are told apart
    std::uint64_t firings_ = 0;
    // Firings of watches not known yet, while calls that add watches are under way (a few at most:
    // one start and one user-active watch at a time).
    static constexpr std::size_t kMostEarlyFirings = 4;
    std::vector<std::uint32_t> early_;
    int callsUnderWay_ = 0;
    QString lost_;
};

} // namespace tarvo
