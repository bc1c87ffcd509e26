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
    if (id == 0 || !lost_.isEmpty())
        return;
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
    auto* call =
        new QDBusPendingCallWatcher(proxy_->asyncCallWithArgumentList(method, arguments), proxy_.get());
    QObject::connect(
        call, &QDBusPendingCallWatcher::finished, proxy_.get(),
        [this, call, round = round_, done = std::move(done)] {
            call->deleteLater();
            const QDBusPendingReply<uint> reply = *call;
            if (reply.isError()) {
                lose(
                    QStringLiteral("GNOME's idle monitor refused a watch (%1)").arg(reply.error().message()));
                return;
            }
            std::uint32_t id = reply.value();
            if (round != round_)
                removeWatch(id); // watching stopped (or restarted) while the call was under way
            else
                done(id);
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
