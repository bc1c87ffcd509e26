#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

// A private Xvfb for one test: it picks a free display number itself (-displayfd) and ends with the test.
// -noreset: by default the server resets whenever its last client leaves, and refuses connections
// meanwhile, which would fail the next connection at random.
class XvfbServer {
public:
    static bool installed() { return !QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty(); }

    // Starts the server; false if it does not come up within a few seconds. Extra arguments are passed on.
    bool start(const QStringList& extraArguments = {}) {
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start("Xvfb",
                       QStringLiteral("-displayfd 1 -screen 0 640x480x24 -noreset -nolisten tcp").split(' ') +
                           extraArguments);
        // The number arrives once the server accepts connections.
        while (!process_.canReadLine()) {
            if (!process_.waitForReadyRead(10000))
                return false;
        }
        display_ = QByteArray(":") + process_.readLine().trimmed();
        return display_.size() > 1;
    }

    // For a test whose application object is yet to be made: starts the server if it is installed and
    // points Qt's X11 platform at it. Without one the test runs on whatever platform it was given.
    bool startForQt() {
        if (!installed() || !start())
            return false;
        qputenv("DISPLAY", display_);
        qputenv("QT_QPA_PLATFORM", "xcb");
        return true;
    }

    void stop() {
        process_.terminate();
        process_.waitForFinished(5000);
    }

    ~XvfbServer() { stop(); }

    const QByteArray& display() const { return display_; }

private:
    QProcess process_;
    QByteArray display_;
};
