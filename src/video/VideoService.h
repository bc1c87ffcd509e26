#pragma once

#include <QByteArray>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <map>
#include <memory>
#include <vector>

class QMediaPlayer;
class QSocketNotifier;
class QVideoWidget;
class QWindow;

namespace tarvo {

// The helper program's side of the videos (see platform/linux/MciMediaCommands.h): it reads one
// command a line from its standard input and ends when the input ends.
//   open <device> <parent window> <file>     a player for the file, its window a child of the parent
//   place <device> <x> <y> <w> <h>            the video window's place in the parent; no size: hidden
//   play <device> <0|1>                       plays once the file has loaded; 1: over and over
//   pause|resume|stop|close <device>
// The file is the bytes of its name percent-encoded, so that no name (one with blanks or a line break
// in it) can split or end the line. Every line is answered with "ok" on standard output once it has
// been handled: the program takes a helper that stops answering for hung, and starts another.
// A video's window shows only once its first picture has arrived, so a file that does not play (a
// damaged one, one without a video stream) shows nothing; neither does any file on an installation
// without the AVI demuxer (Qt Multimedia would not survive reading the file then). The video windows
// take neither input nor focus.
class VideoService : public QObject {
    Q_OBJECT

public:
    VideoService();
    ~VideoService() override;

    void handle(const QByteArray& line);

private:
    struct Device {
        std::unique_ptr<QWindow> host;        // the parent window, not ours: only its stand-in
        std::unique_ptr<QVideoWidget> window; // outlives the player that draws into it
        std::unique_ptr<QMediaPlayer> player;
        bool playWanted = false;
        bool loaded = false;
        bool framed = false; // a picture has arrived: the window may show
        QRect place;
    };

    // How long a closed player is kept (see retire()) when no other video shows a picture first.
    static constexpr int kReapAfterMs = 1000;

    void readInput();
    void retire(std::unique_ptr<Device> device);
    void open(int id, unsigned long long parent, const QString& file);
    void playIfLoaded(Device& device);
    static void showIfReady(Device& device);

    std::unique_ptr<QSocketNotifier> input_;
    QByteArray pending_;
    std::map<int, std::unique_ptr<Device>> devices_;
    std::vector<std::unique_ptr<Device>> retired_;
    QTimer reaper_;
    bool canDemuxAvi_;
};

} // namespace tarvo
