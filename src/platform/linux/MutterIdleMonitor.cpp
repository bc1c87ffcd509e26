#include "platform/linux/MutterIdleMonitor.h"

#include <QDBusAbstractInterface>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace tarvo {

namespace {

constexpr char kPath[] = "/org/gnome/Mutter/IdleMonitor/Core";
constexpr char kInterface[] = "org.gnome.Mutter.IdleMonitor";

} // namespace

// The service's one object. Its signal is declared as a Qt signal of the same name and arguments, so
// that connecting to it subscribes to the bus signal.
class MutterIdleMonitorProxy : public QDBusAbstractInterface {
    Q_OBJECT

public:
    explicit MutterIdleMonitorProxy(const QDBusConnection& bus)
        : QDBusAbstractInterface(QLatin1String(MutterIdleMonitor::kService), QLatin1String(kPath), kInterface,
                                 bus, nullptr) {}

signals:
    void WatchFired(uint id);
};

bool MutterIdleMonitor::offered(const QDBusConnection& bus) {
    QDBusConnectionInterface* daemon = bus.isConnected() ? bus.interface() : nullptr;
    return daemon && daemon->isServiceRegistered(QLatin1String(kService)).value();
}

MutterIdleMonitor::MutterIdleMonitor(const QDBusConnection& bus, const Clock& clock)
    : IdleNotificationMonitor(clock)
    , proxy_(std::make_unique<MutterIdleMonitorProxy>(bus))
    , watcher_(std::make_unique<QDBusServiceWatcher>(QLatin1String(kService), bus,
                                                     QDBusServiceWatcher::WatchForUnregistration)) {
    QObject::connect(proxy_.get(), &MutterIdleMonitorProxy::WatchFired, proxy_.get(),
                     [this](uint id) { watchFired(id); });
    QObject::connect(watcher_.get(), &QDBusServiceWatcher::serviceUnregistered, proxy_.get(),
                     [this] { lose(QStringLiteral("GNOME's idle monitor has left the session bus")); });
}

MutterIdleMonitor::~MutterIdleMonitor() {
    removeWatch(idleWatch_);
    removeWatch(activeWatch_);
}

QString MutterIdleMonitor::description() const {
    return QStringLiteral("Natural pauses are detected through GNOME's idle monitor.");
}

void MutterIdleMonitor::startWatching() {
    ++round_;
    if (!lost_.isEmpty())
        return;
    addWatch(QStringLiteral("AddIdleWatch"), {QVariant::fromValue(quint64{kIdleAfter})},
             [this](std::uint32_t id) { idleWatch_ = id; });
}

void MutterIdleMonitor::stopWatching() {
    ++round_;
    removeWatch(idleWatch_);
    removeWatch(activeWatch_);
    activeAsked_ = false;
}

void MutterIdleMonitor::watchFired(std::uint32_t id) {
    ++firings_;
    fired(id);
}

void MutterIdleMonitor::fired(std::uint32_t id) {
    if (id == 0 || !lost_.isEmpty())
        return;
    if (id != idleWatch_ && id != activeWatch_) {
        // Perhaps the firing of a watch whose number is still on its way (see addWatch); a firing of
        // a watch withdrawn meanwhile is forgotten once no answer is outstanding.
        if (callsUnderWay_ > 0 && early_.size() < kMostEarlyFirings)
            early_.push_back(id);
        return;
    }
    if (id == idleWatch_) {
        idled();
        // One user-active watch at a time: the idle watch fires again after input that came before the
        // user-active watch was in place, and then the watch already asked for still stands.
        if (!std::exchange(activeAsked_, true))
            addWatch(QStringLiteral("AddUserActiveWatch"), {},
                     [this](std::uint32_t active) { activeWatch_ = active; });
    } else if (id == activeWatch_) {
        activeWatch_ = 0; // the service drops a user-active watch once it has fired
        activeAsked_ = false;
        resumed();
    }
}

void MutterIdleMonitor::addWatch(const QString& method, const QVariantList& arguments,
                                 std::function<void(std::uint32_t)> done) {
    // The service answers before it fires the watch it made, but Qt hands the answer on only once the
    // watcher below exists: an answer that arrives before that is delivered after a firing that
    // arrived meanwhile. Such a firing is kept until the answer tells whose it is.
    ++callsUnderWay_;
    auto* call =
        new QDBusPendingCallWatcher(proxy_->asyncCallWithArgumentList(method, arguments), proxy_.get());
    QObject::connect(
        call, &QDBusPendingCallWatcher::finished, proxy_.get(),
        [this, call, round = round_, done = std::move(done)] {
            call->deleteLater();
            const QDBusPendingReply<uint> reply = *call;
            const bool last = --callsUnderWay_ == 0;
            if (reply.isError()) {
                lose(
                    QStringLiteral("GNOME's idle monitor refused a watch (%1)").arg(reply.error().message()));
                return;
            }
            std::uint32_t id = reply.value();
            const bool firedEarly = std::erase(early_, id) > 0;
            if (last)
                early_.clear();
            if (round != round_) {
                removeWatch(id); // watching stopped (or restarted) while the call was under way
                return;
            }
            done(id);
            if (firedEarly)
                fired(id);
        });
}

void MutterIdleMonitor::removeWatch(std::uint32_t& id) {
    if (id == 0)
        return;
    proxy_->call(QDBus::NoBlock, QStringLiteral("RemoveWatch"), QVariant::fromValue(quint32{id}));
    id = 0;
}

void MutterIdleMonitor::lose(const QString& reason) {
    if (!lost_.isEmpty())
        return;
    lost_ = reason;
    stopWatching();
}

} // namespace tarvo

#include "MutterIdleMonitor.moc"
