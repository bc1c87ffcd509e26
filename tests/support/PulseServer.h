#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>

// A private PulseAudio server with a null sink, for tests that listen to what the program plays. It
// lives in its own folders and leaves the user's sound server alone; this process is pointed at it
// (PULSE_SERVER), and neither this process nor its children ever start a sound server of their own.
// Recording runs parec on the sink's monitor.
class PulseServer {
public:
    // A sound in a recording, in milliseconds from the start of the recording.
    struct Sound {
        int startMs;
        int endMs;
        int lengthMs() const { return endMs - startMs + 1; }
    };

    PulseServer();
    ~PulseServer() {
        server_.terminate();
        server_.waitForFinished(5000);
    }

    // Starts the server; false when pulseaudio is not installed or did not come up.
    bool start();
    // Records the sink while `play` runs: the sounds heard, and how long `play` took (-1 if nothing was
    // recorded). parec delivers its first data up to 2 s late, so nothing plays before it has; the last
    // sound's tail gets half a second. A sound is a run of 1 ms windows at or above a quarter of the
    // loudest peak, after at least 20 ms below it; a recording never louder than 300 is silence.
    qint64 record(const std::function<void()>& play, QList<Sound>& sounds);

    // "start+length start+length ..." for messages.
    static QString describe(const QList<Sound>& sounds) {
        QString text;
        for (const Sound& s : sounds)
            text += QStringLiteral("%1+%2 ").arg(s.startMs).arg(s.lengthMs());
        return text;
    }

    // A private folder for the test's own files.
    QString filePath(const QString& name) const { return dir_.filePath(name); }

private:
    QTemporaryDir dir_;
    QProcess server_;
};
