#pragma once

#include "core/MediaCommands.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>

class QProcess;

namespace tarvo {

// The media commands, with the videos played by a helper program of the program folder, tarvovideo,
// on Qt Multimedia (QMediaPlayer with its GStreamer backend, into a QVideoWidget). The helper makes
// each video's window a child of the window that the open command's "parent" names, at the place that
// "put ... window at" gives, so the video appears inside the program's own window as if it were drawn
// there; the video's window takes no input, so clicks on it reach that window.
//
// Why a helper. Qt Multimedia and GStreamer with its plugins would cost the program, which spends
// nearly all of its life idle in the tray, several megabytes of memory from the first exercise on, for
// good: neither unloads. In a helper they are loaded at the first video and gone a few seconds after
// the last one closes, when this side closes the helper's input (the helper is kept between the
// exercises of a break). And a plugin that crashes on a damaged file takes only the helper with it:
// nothing is shown for that exercise, and the next open starts a new helper.
//
// The user-interface thread never waits for the helper: it is started, written to and ended without
// a wait, and its answers arrive through the event loop. A helper that dies, or leaves a command
// unanswered for helperAnswersMs (hung in a decoder, say), is given up with the videos it had: the
// break's countdown goes on with nothing shown, and the next open starts a new helper.
//
// This side understands the commands (MciCommand) and keeps the aliases; an unknown alias, a second
// open of an alias in use, a file that is not there or a helper program that is missing are error
// numbers of the classic interface, and nothing is shown. Failures the helper meets (no AVI demuxer
// installed, a file that does not play) show nothing either; they are not reported back, as the
// program never examines the results. The helper's own messages go to this program's standard error.
class MciMediaCommands : public QObject, public MediaCommands {
    Q_OBJECT

public:
    // How long an idle helper is kept after its last video closed.
    static constexpr int kHelperKeptMs = 5000;
    // How long the helper may leave a command unanswered. The first one waits for the helper's start
    // as well, which loads Qt Multimedia and GStreamer (and on a first run lets GStreamer build its
    // plugin registry): seconds on a slow or busy machine.
    static constexpr int kHelperAnswersMs = 10000;

    explicit MciMediaCommands(QString helperProgram, int helperKeptMs = kHelperKeptMs,
                              int helperAnswersMs = kHelperAnswersMs, QObject* parent = nullptr);
    ~MciMediaCommands() override;

    int send(const QString& command) override;

    // Whether a helper is at work for this side (for tests and the benchmark).
    bool helperRunning() const;

private:
    void startHelper();
    void tell(const QString& line);
    void answered(QProcess* helper);
    void giveUpHelper(bool hung);

    QString helperProgram_;
    QProcess* helper_ = nullptr; // the one at work; those given up are children until they have ended
    int unanswered_ = 0;         // lines the helper at work has not answered yet
    QTimer idle_;
    QTimer answers_;
    QHash<QString, int> devices_; // folded alias -> the helper's device number
    int nextDevice_ = 1;
};

} // namespace tarvo
