#include "platform/linux/BusPresence.h"

#include <QDBusAbstractInterface>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <array>
#include <unistd.h>

namespace tarvo {

namespace {

constexpr char kLogin[] = "org.freedesktop.login1";
constexpr char kNotifications[] = "org.freedesktop.Notifications";
constexpr char kSessionManager[] = "org.gnome.SessionManager";
constexpr char kFreedesktopSaver[] = "org.freedesktop.ScreenSaver";
constexpr char kGnomeSaver[] = "org.gnome.ScreenSaver";
constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr const char* kSessionServices[] = {kNotifications, kSessionManager, kFreedesktopSaver, kGnomeSaver,
                                            kPortal};
// GNOME's session manager: the flag of InhibitedActions that keeps the session from idling.
constexpr uint kInhibitIdle = 8;

bool registered(const QDBusConnection& bus, const char* service) {
    QDBusConnectionInterface* daemon = bus.isConnected() ? bus.interface() : nullptr;
    return daemon && daemon->isServiceRegistered(QLatin1String(service)).value();
}

// A property's object, whose signal is declared as a Qt signal of the same name and arguments, so that
// connecting to it subscribes to the bus signal.
class PropertiesProxy : public QDBusAbstractInterface {
    Q_OBJECT

public:
    PropertiesProxy(const QString& service, const QString& path, const QDBusConnection& bus)
        : QDBusAbstractInterface(service, path, "org.freedesktop.DBus.Properties", bus, nullptr) {}

signals:
    void PropertiesChanged(const QString& interface, const QVariantMap& changed,
                           const QStringList& invalidated);
};

// The bus's own word that the connection is gone (the bus daemon ended), from libdbus itself.
class LocalProxy : public QDBusAbstractInterface {
    Q_OBJECT

public:
    explicit LocalProxy(const QDBusConnection& bus)
        : QDBusAbstractInterface(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                 "org.freedesktop.DBus.Local", bus, nullptr) {}

signals:
    void Disconnected();
};

class ScreenSaverProxy : public QDBusAbstractInterface {
    Q_OBJECT

public:
    ScreenSaverProxy(const QString& service, const QString& path, const QDBusConnection& bus)
        : QDBusAbstractInterface(service, path, service.toLatin1().constData(), bus, nullptr) {}

signals:
    void ActiveChanged(bool active);
};

// The desktop portal's settings, where GNOME's backend passes its own on (GNOME's do-not-disturb is
// its notifications' show-banners turned off).
class PortalSettingsProxy : public QDBusAbstractInterface {
    Q_OBJECT

public:
    explicit PortalSettingsProxy(const QDBusConnection& bus)
        : QDBusAbstractInterface(QLatin1String(kPortal), QStringLiteral("/org/freedesktop/portal/desktop"),
                                 "org.freedesktop.portal.Settings", bus, nullptr) {}

signals:
    void SettingChanged(const QString& space, const QString& key, const QDBusVariant& value);
};

// Asks a question of a proxy's service without starting it: reading a notification server's setting
// must not bring up a notification server that the desktop does not run.
QDBusPendingCall ask(const QDBusAbstractInterface& proxy, const QString& method,
                     const QVariantList& arguments = {}) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(proxy.service(), proxy.path(), proxy.interface(), method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return proxy.connection().asyncCall(call);
}

// A value as the portal sends it: Read wraps it in one variant more than SettingChanged does.
QVariant unwrapped(QVariant v) {
    while (v.metaType() == QMetaType::fromType<QDBusVariant>())
        v = v.value<QDBusVariant>().variant();
    return v;
}

} // namespace

// GNOME's show-banners setting through the desktop portal, read when the portal appears and kept by
// SettingChanged; do-not-disturb holds while it is false (and never where the portal lacks it). Like
// the other followers below, it lives while its service is on the bus (BusPresence makes and drops it).
class BannersOff {
public:
    BannersOff(const QDBusConnection& bus, std::function<void()> changed)
        : changed_(std::move(changed))
        , proxy_(bus) {
        QObject::connect(&proxy_, &PortalSettingsProxy::SettingChanged, &proxy_,
                         [this](const QString& space, const QString& key, const QDBusVariant& value) {
                             if (space == kSpace && key == kKey)
                                 heard_ = true, take(value.variant());
                         });
        read();
    }

    bool on() const { return on_; }

private:
    static constexpr QLatin1String kSpace{"org.gnome.desktop.notifications"};
    static constexpr QLatin1String kKey{"show-banners"};

    void read() {
        auto* call =
            new QDBusPendingCallWatcher(ask(proxy_, QStringLiteral("Read"), {kSpace, kKey}), &proxy_);
        QObject::connect(call, &QDBusPendingCallWatcher::finished, &proxy_, [this, call] {
            call->deleteLater();
            if (!heard_)
                take(call->isError() ? QVariant() : call->reply().arguments().value(0));
        });
    }
    void take(const QVariant& value) {
        const QVariant banners = unwrapped(value);
        const bool on = banners.metaType() == QMetaType::fromType<bool>() && !banners.toBool();
        if (std::exchange(on_, on) != on)
            changed_();
    }

    const std::function<void()> changed_;
    PortalSettingsProxy proxy_;
    bool heard_ = false; // a change announced since the reading was asked for: newer than its answer
    bool on_ = false;
};

// One boolean reading of one property, read when the service appears and kept by PropertiesChanged;
// false while the value is of another type than expected. A change announced while the reading is
// under way makes its answer stale: the service answers first, but Qt may hand an answer on after a
// signal that followed it (when the answer came before the call's watcher existed). The same holds
// for the other followers below.
class BusProperty {
public:
    BusProperty(const QDBusConnection& bus, const QString& service, const QString& path, QString interface,
                QString property, std::function<bool(const QVariant&)> reading, std::function<void()> changed)
        : interface_(std::move(interface))
        , property_(std::move(property))
        , reading_(std::move(reading))
        , changed_(std::move(changed))
        , proxy_(service, path, bus) {
        QObject::connect(
            &proxy_, &PropertiesProxy::PropertiesChanged, &proxy_,
            [this](const QString& interface, const QVariantMap& values, const QStringList& invalidated) {
                if (interface != interface_)
                    return;
                if (values.contains(property_))
                    heard_ = true, set(reading_(values.value(property_)));
                else if (invalidated.contains(property_))
                    read();
            });
        read();
    }

    bool value() const { return value_; }

private:
    void read() {
        heard_ = false;
        auto* call =
            new QDBusPendingCallWatcher(ask(proxy_, QStringLiteral("Get"), {interface_, property_}), &proxy_);
        QObject::connect(call, &QDBusPendingCallWatcher::finished, &proxy_, [this, call] {
            call->deleteLater();
            const QDBusPendingReply<QDBusVariant> reply = *call;
            if (!heard_)
                set(!reply.isError() && reading_(reply.value().variant()));
        });
    }

    void set(bool value) {
        if (std::exchange(value_, value) != value)
            changed_();
    }

    const QString interface_, property_;
    const std::function<bool(const QVariant&)> reading_;
    const std::function<void()> changed_;
    PropertiesProxy proxy_;
    bool value_ = false;
    bool heard_ = false; // a change announced since the reading was asked for: newer than its answer
};

// A screen saver's ActiveChanged(bool), with GetActive when it appears.
class ScreenSaverWatch {
public:
    ScreenSaverWatch(const QDBusConnection& bus, const char* service, const char* path,
                     std::function<void()> changed)
        : changed_(std::move(changed))
        , proxy_(QLatin1String(service), QLatin1String(path), bus) {
        QObject::connect(&proxy_, &ScreenSaverProxy::ActiveChanged, &proxy_,
                         [this](bool active) { heard_ = true, set(active); });
        read();
    }

    bool active() const { return active_; }

private:
    void read() {
        auto* call = new QDBusPendingCallWatcher(ask(proxy_, QStringLiteral("GetActive")), &proxy_);
        QObject::connect(call, &QDBusPendingCallWatcher::finished, &proxy_, [this, call] {
            call->deleteLater();
            const QDBusPendingReply<bool> reply = *call;
            if (!heard_)
                set(!reply.isError() && reply.value());
        });
    }
    void set(bool active) {
        if (std::exchange(active_, active) != active)
            changed_();
    }

    const std::function<void()> changed_;
    ScreenSaverProxy proxy_;
    bool active_ = false;
    bool heard_ = false; // a change announced since the reading was asked for: newer than its answer
};

namespace {

bool isTrue(const QVariant& v) {
    return v.metaType() == QMetaType::fromType<bool>() && v.toBool();
}

} // namespace

BusPresence::BusPresence(const QDBusConnection& session, const QDBusConnection& system,
                         std::function<void()> changed)
    : session_(session)
    , system_(system)
    , changed_(std::move(changed))
    , context_(std::make_unique<QObject>()) {
    if (session_.isConnected()) {
        onDisconnection(session_, [this] {
            for (const char* name : kSessionServices)
                vanish(QLatin1String(name));
        });
        // One watch for all of the session's services, and a follower (its proxy, its signal, its
        // reading) only for a service that is there: a desktop without them costs one match rule.
        auto* watch = new QDBusServiceWatcher(context_.get());
        watch->setConnection(session_);
        watch->setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
        for (const char* name : kSessionServices)
            watch->addWatchedService(QLatin1String(name));
        QObject::connect(watch, &QDBusServiceWatcher::serviceOwnerChanged, context_.get(),
                         [this](const QString& name, const QString&, const QString& owner) {
                             vanish(name);
                             if (!owner.isEmpty())
                                 appear(name);
                         });
        QDBusConnectionInterface* daemon = session_.interface();
        const QDBusReply<QStringList> names =
            daemon ? daemon->registeredServiceNames() : QDBusReply<QStringList>();
        for (const char* name : kSessionServices)
            if (names.isValid() && names.value().contains(QLatin1String(name)))
                appear(QLatin1String(name));
    }
    if (system_.isConnected()) {
        onDisconnection(system_, [this] { vanish(QLatin1String(kLogin)); });
        auto* watch = new QDBusServiceWatcher(QLatin1String(kLogin), system_,
                                              QDBusServiceWatcher::WatchForOwnerChange, context_.get());
        QObject::connect(watch, &QDBusServiceWatcher::serviceOwnerChanged, context_.get(),
                         [this](const QString& name, const QString&, const QString& owner) {
                             vanish(name);
                             if (!owner.isEmpty())
                                 findSession();
                         });
        findSession();
    }
}

void BusPresence::appear(const QString& name) {
    if (name == QLatin1String(kNotifications) && !notifications_)
        notifications_ =
            std::make_unique<BusProperty>(session_, name, QStringLiteral("/org/freedesktop/Notifications"),
                                          name, QStringLiteral("Inhibited"), isTrue, changed_);
    else if (name == QLatin1String(kSessionManager) && !sessionManager_)
        sessionManager_ = std::make_unique<BusProperty>(
            session_, name, QStringLiteral("/org/gnome/SessionManager"), name,
            QStringLiteral("InhibitedActions"),
            [](const QVariant& v) {
                return v.metaType() == QMetaType::fromType<uint>() && (v.toUInt() & kInhibitIdle);
            },
            changed_);
    else if (name == QLatin1String(kFreedesktopSaver) && !freedesktopSaver_)
        freedesktopSaver_ =
            std::make_unique<ScreenSaverWatch>(session_, kFreedesktopSaver, "/ScreenSaver", changed_);
    else if (name == QLatin1String(kGnomeSaver) && !gnomeSaver_)
        gnomeSaver_ =
            std::make_unique<ScreenSaverWatch>(session_, kGnomeSaver, "/org/gnome/ScreenSaver", changed_);
    else if (name == QLatin1String(kPortal) && !banners_)
        banners_ = std::make_unique<BannersOff>(session_, changed_);
}

void BusPresence::vanish(const QString& name) {
    const std::array<bool, 3> before{locked(), doNotDisturb(), idleInhibited()};
    if (name == QLatin1String(kLogin))
        lockedHint_.reset();
    else if (name == QLatin1String(kNotifications))
        notifications_.reset();
    else if (name == QLatin1String(kSessionManager))
        sessionManager_.reset();
    else if (name == QLatin1String(kFreedesktopSaver))
        freedesktopSaver_.reset();
    else if (name == QLatin1String(kGnomeSaver))
        gnomeSaver_.reset();
    else if (name == QLatin1String(kPortal))
        banners_.reset();
    if (before != std::array<bool, 3>{locked(), doNotDisturb(), idleInhibited()})
        changed_();
}

BusPresence::~BusPresence() = default;

void BusPresence::onDisconnection(const QDBusConnection& bus, std::function<void()> drop) {
    // The bus daemon ended: its services' conditions no longer hold, and none of them is followed any
    // more (a new daemon is a new session, whose services a new start of the program follows).
    auto* local = new LocalProxy(bus);
    local->setParent(context_.get());
    QObject::connect(local, &LocalProxy::Disconnected, context_.get(), std::move(drop));
}

void BusPresence::findSession() {
    // This session's object, by the session id that the login set, or by this process.
    const QByteArray id = qgetenv("XDG_SESSION_ID");
    QDBusMessage question = QDBusMessage::createMethodCall(
        QLatin1String(kLogin), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"),
        id.isEmpty() ? QStringLiteral("GetSessionByPID") : QStringLiteral("GetSession"));
    question << (id.isEmpty() ? QVariant::fromValue(uint(::getpid())) : QVariant(QString::fromLocal8Bit(id)));
    auto* call = new QDBusPendingCallWatcher(system_.asyncCall(question), context_.get());
    QObject::connect(call, &QDBusPendingCallWatcher::finished, context_.get(), [this, call] {
        call->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *call;
        if (reply.isError() || reply.value().path().isEmpty())
            return; // no logind, or it does not know this session: a lock is seen by the screen saver alone
        lockedHint_ = std::make_unique<BusProperty>(system_, QLatin1String(kLogin), reply.value().path(),
                                                    QStringLiteral("org.freedesktop.login1.Session"),
                                                    QStringLiteral("LockedHint"), isTrue, changed_);
    });
}

bool BusPresence::locked() const {
    return (lockedHint_ && lockedHint_->value()) || (freedesktopSaver_ && freedesktopSaver_->active()) ||
           (gnomeSaver_ && gnomeSaver_->active());
}

bool BusPresence::doNotDisturb() const {
    return (notifications_ && notifications_->value()) || (banners_ && banners_->on());
}

bool BusPresence::idleInhibited() const {
    return sessionManager_ && sessionManager_->value();
}

QStringList BusPresence::sourcesPresent() const {
    QStringList present;
    if (registered(system_, kLogin))
        present << QStringLiteral("logind");
    if (freedesktopSaver_ || gnomeSaver_)
        present << QStringLiteral("the screen saver");
    if (notifications_)
        present << QStringLiteral("the notification server");
    if (sessionManager_)
        present << QStringLiteral("GNOME's session manager");
    if (banners_)
        present << QStringLiteral("the desktop portal");
    return present;
}

} // namespace tarvo

#include "BusPresence.moc"
