#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <map>

// Any desktop service as its clients see it, on its own connection to a test's bus, at a path and below
// it: it answers
// Properties.Get and plain methods from what the test put in `answers` ("<interface>.<property>" or
// the method's name; anything else is an error, as an unknown session is to logind), and sends the
// signals the test makes it send, with whatever argument types the test chooses.
class BusStandIn : public QDBusVirtualObject {
public:
    BusStandIn(const QString& address, const QString& name, const QString& path)
        : bus_(QDBusConnection::connectToBus(address, name))
        , path_(path) {
        bus_.registerVirtualObject(path, this, QDBusConnection::SubPath);
    }
    ~BusStandIn() override { QDBusConnection::disconnectFromBus(bus_.name()); }

    bool enter(const QString& service) { return bus_.registerService(service); }
    bool leave(const QString& service) { return bus_.unregisterService(service); }

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

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QList<QVariant> in = message.arguments();
        const QString key = message.member() == "Get" && in.size() == 2
                                ? in[0].toString() + '.' + in[1].toString()
                                : message.member();
        const auto answer = answers.find(key);
        if (answer == answers.end()) {
            connection.send(message.createErrorReply(QDBusError::UnknownObject, key));
        } else if (message.member() == "Get") {
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(answer->second))));
        } else {
            connection.send(message.createReply(answer->second));
        }
        return true;
    }

private:
    QDBusConnection bus_;
    QString path_;
};
