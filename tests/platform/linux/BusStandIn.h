#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <functional>
#include <map>
#include <utility>

// Any desktop service as its clients see it, on its own connection to a test's bus, at a path and below
// it: it answers
// Properties.Get and plain methods from what the test put in `answers` ("<interface>.<property>" or
// the method's name; anything else is an error, as an unknown session is to logind), and sends the
// signals the test makes it send, with whatever argument types the test chooses.
class BusStandIn : public QDBusVirtualObject {
public:
    // Serves `path` and below under the name `service`, which it leaves and enters again when told.
    BusStandIn(const QString& address, const QString& service, const QString& path)
        : bus_(QDBusConnection::connectToBus(address, service))
        , service_(service)
        , path_(path) {
        bus_.registerVirtualObject(path, this, QDBusConnection::SubPath);
        enter();
    }
    ~BusStandIn() override { QDBusConnection::disconnectFromBus(bus_.name()); }

    bool enter() { return bus_.registerService(service_); }
    bool leave() { return bus_.unregisterService(service_); }

    // From the object at `path`, or below it at path_ + subPath.
    void emitSignal(const QString& interface, const QString& name, const QVariantList& arguments,
                    const QString& subPath = {}) {
        QDBusMessage signal = QDBusMessage::createSignal(path_ + subPath, interface, name);
        signal.setArguments(arguments);
        bus_.send(signal);
    }
    // A property changes, announced the way the real services do.
    void change(const QString& interface, const QString& property, const QVariant& value,
                const QString& subPath = {}) {
        answers[interface + '.' + property] = value;
        emitSignal("org.freedesktop.DBus.Properties", "PropertiesChanged",
                   {interface, QVariantMap{{property, value}}, QStringList()}, subPath);
    }

    std::map<QString, QVariant> answers;
    // Done once, between taking the next call's answer and sending it: a change announced before the
    // answer reaches the client, the order in which the client's Qt may hand the two on.
    std::function<void()> beforeAnswer;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QList<QVariant> in = message.arguments();
        const QString key = message.member() == "Get" && in.size() == 2
                                ? in[0].toString() + '.' + in[1].toString()
                                : message.member();
        const auto answer = answers.find(key);
        const QVariant value = answer == answers.end() ? QVariant() : answer->second;
        if (beforeAnswer)
            std::exchange(beforeAnswer, {})();
        connection.send(!value.isValid() ? message.createErrorReply(QDBusError::UnknownObject, key)
                        : message.member() != "Get"
                            ? message.createReply(value)
                            : message.createReply(QVariant::fromValue(QDBusVariant(value))));
        return true;
    }

private:
    QDBusConnection bus_;
    QString service_, path_;
};
