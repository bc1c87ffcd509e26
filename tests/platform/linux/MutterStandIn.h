#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>

#include <algorithm>
#include <map>

// GNOME's idle monitor as its clients see it, on its own connection to a test's bus, with the user's
// input and idle time made up by the test. As the real one: an idle watch fires each time the idle time
// reaches its interval (at once when added to a user idle that long already), a user-active watch fires
// at the next input and is then gone, the answer to a call goes out before any firing it causes (unless
// fireBeforeAnswer: the order in which a client's Qt may hand the two on), and a firing goes to the
// watch's owner only.
class MutterStandIn : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Mutter.IdleMonitor")

public:
    explicit MutterStandIn(const QString& busAddress)
        : bus_(QDBusConnection::connectToBus(busAddress, QStringLiteral("mutter-stand-in"))) {
        bus_.registerObject(QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core"), this,
                            QDBusConnection::ExportScriptableSlots);
    }
    ~MutterStandIn() override { QDBusConnection::disconnectFromBus(bus_.name()); }

    bool enter() { return bus_.registerService(QStringLiteral("org.gnome.Mutter.IdleMonitor")); }
    bool leave() { return bus_.unregisterService(QStringLiteral("org.gnome.Mutter.IdleMonitor")); }

    // The user's doings.
    void input() {
        idle_ = 0;
        std::erase_if(watches_, [this](const auto& watch) {
            if (watch.second.interval == 0)
                fire(watch.first, watch.second.owner);
            return watch.second.interval == 0;
        });
        for (auto& [id, watch] : watches_)
            watch.fired = false;
    }
    void idleFor(quint64 milliseconds) {
        idle_ += milliseconds;
        for (auto& [id, watch] : watches_)
            if (watch.interval != 0 && !watch.fired && watch.interval <= idle_) {
                watch.fired = true;
                fire(id, watch.owner);
            }
    }

    // The watches in place: idle watches and user-active ones; and the firings sent.
    int watches(bool idle) const {
        return int(std::count_if(watches_.begin(), watches_.end(),
                                 [idle](const auto& watch) { return (watch.second.interval != 0) == idle; }));
    }
    int firings() const { return firings_; }
    quint64 idle() const { return idle_; }

    bool fireBeforeAnswer = false;

public slots:
    Q_SCRIPTABLE quint64 GetIdletime() { return idle_; }
    Q_SCRIPTABLE quint32 AddIdleWatch(quint64 interval) {
        const quint32 id = add(interval);
        if (interval <= idle_ && fireBeforeAnswer) {
            setDelayedReply(true);
            const QDBusMessage answer = message().createReply(id);
            idleFor(0);
            bus_.send(answer);
        } else if (interval <= idle_) { // after the answer, as the real one does
            QMetaObject::invokeMethod(
                this, [this] { idleFor(0); }, Qt::QueuedConnection);
        }
        return id;
    }
    Q_SCRIPTABLE quint32 AddUserActiveWatch() { return add(0); }
    Q_SCRIPTABLE void RemoveWatch(quint32 id) { watches_.erase(id); }

private:
    struct Watch {
        quint64 interval; // 0: a user-active watch
        QString owner;
        bool fired = false;
    };

    quint32 add(quint64 interval) {
        watches_[++lastId_] = Watch{interval, message().service()};
        return lastId_;
    }
    void fire(quint32 id, const QString& owner) {
        bus_.send(QDBusMessage::createTargetedSignal(
                      owner, QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core"),
                      QStringLiteral("org.gnome.Mutter.IdleMonitor"), QStringLiteral("WatchFired"))
                  << id);
        ++firings_;
    }

    QDBusConnection bus_;
    std::map<quint32, Watch> watches_;
    quint64 idle_ = 0;
    quint32 lastId_ = 0;
    int firings_ = 0;
};
