#include "video/VideoService.h"

#include <QCoreApplication>
#include <QFile>
#include <QMediaFormat>
#include <QMediaPlayer>
#include <QSocketNotifier>
#include <QUrl>
#include <QVideoFrame>
#include <QVideoSink>
#include <QVideoWidget>
#include <QWindow>

#include <unistd.h>

namespace tarvo {

VideoService::VideoService()
    : input_(std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read))
    , canDemuxAvi_(QMediaFormat().supportedFileFormats(QMediaFormat::Decode).contains(QMediaFormat::AVI)) {
    connect(input_.get(), &QSocketNotifier::activated, this, &VideoService::readInput);
    reaper_.setSingleShot(true);
    connect(&reaper_, &QTimer::timeout, this, [this] { retired_.clear(); });
}

VideoService::~VideoService() = default;

void VideoService::readInput() {
    char buffer[4096];
    const ssize_t got = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (got <= 0) {
        input_->setEnabled(false);
        QCoreApplication::quit();
        return;
    }
    pending_.append(buffer, got);
    for (qsizetype end; (end = pending_.indexOf('\n')) >= 0;) {
        handle(pending_.left(end));
        pending_.remove(0, end + 1);
        static constexpr char kAnswer[] = "ok\n";
        if (::write(STDOUT_FILENO, kAnswer, sizeof kAnswer - 1) < 0)
            return; // nobody listens any more: the input ends next
    }
}

void VideoService::handle(const QByteArray& line) {
    const QList<QByteArray> w = line.split(' ');
    if (w.size() < 2)
        return;
    const int id = w[1].toInt();
    if (w[0] == "open" && w.size() == 4) {
        open(id, w[2].toULongLong(), QFile::decodeName(QByteArray::fromPercentEncoding(w[3])));
        return;
    }
    const auto found = devices_.find(id);
    if (found == devices_.end())
        return;
    Device& d = *found->second;
    if (w[0] == "place" && w.size() == 6) {
        d.place = QRect(w[2].toInt(), w[3].toInt(), w[4].toInt(), w[5].toInt());
        showIfReady(d);
    } else if (w[0] == "play" && w.size() == 3) {
        d.player->setLoops(w[2] == "1" ? QMediaPlayer::Infinite : 1);
        d.playWanted = true;
        playIfLoaded(d);
    } else if (w[0] == "pause") {
        d.player->pause();
    } else if (w[0] == "resume") {
        playIfLoaded(d);
    } else if (w[0] == "stop") {
        d.playWanted = false;
        d.player->stop();
    } else if (w[0] == "close") {
        retire(std::move(found->second));
        devices_.erase(found);
    }
}

void VideoService::open(int id, unsigned long long parent, const QString& file) {
    if (!canDemuxAvi_ || devices_.count(id) != 0)
        return;
    auto& slot = devices_[id];
    slot = std::make_unique<Device>();
    Device& d = *slot;
    if (parent != 0)
        d.host.reset(QWindow::fromWinId(static_cast<WId>(parent)));
    d.player = std::make_unique<QMediaPlayer>();
    d.window = std::make_unique<QVideoWidget>();
    d.window->setAttribute(Qt::WA_NativeWindow);
    d.window->setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                             Qt::WindowDoesNotAcceptFocus);
    d.window->setStyleSheet(QStringLiteral("background: black;"));
    d.window->winId();
    if (d.host)
        d.window->windowHandle()->setParent(d.host.get());
    d.player->setVideoOutput(d.window.get());
    Device* device = &d;
    connect(d.player.get(), &QMediaPlayer::mediaStatusChanged, this,
            [this, device](QMediaPlayer::MediaStatus s) {
                if (s == QMediaPlayer::LoadedMedia) {
                    device->loaded = true;
                    playIfLoaded(*device);
                }
            });
    connect(d.window->videoSink(), &QVideoSink::videoFrameChanged, this,
            [this, device](const QVideoFrame& frame) {
                if (frame.isValid() && !device->framed) {
                    device->framed = true;
                    showIfReady(*device);
                    reaper_.start(0);
                }
            });
    connect(d.player.get(), &QMediaPlayer::errorOccurred, this, [device] { device->window->hide(); });
    d.player->setSource(QUrl::fromLocalFile(file));
}

void VideoService::retire(std::unique_ptr<Device> device) {
    // Taking a player down (stopping it, even only deleting its video window) blocks this thread for
    // about 300 ms inside Qt Multimedia's GStreamer backend, and each one kept costs some 3.5 MiB.
    // Done at once, the wait would stand between "next" and the next exercise's first picture; so a
    // closed video only vanishes and pauses, and is taken down once the next video's first picture
    // is on the screen (where a short hold of that picture is hardly seen), or after a second when
    // no other video came.
    QObject::disconnect(device->player.get(), nullptr, this, nullptr);
    QObject::disconnect(device->window->videoSink(), nullptr, this, nullptr);
    device->window->hide();
    device->player->pause();
    retired_.push_back(std::move(device));
    reaper_.start(kReapAfterMs);
}

void VideoService::showIfReady(Device& d) {
    d.window->setGeometry(d.place.x(), d.place.y(), std::max(d.place.width(), 0),
                          std::max(d.place.height(), 0));
    d.window->setVisible(d.framed && !d.place.isEmpty() && d.player->error() == QMediaPlayer::NoError);
}

void VideoService::playIfLoaded(Device& d) {
    // Asked to play straight after the file was set, the player now and then does not start at all.
    if (d.playWanted && d.loaded && d.player->error() == QMediaPlayer::NoError)
        d.player->play();
}

} // namespace tarvo
