#pragma once

#include <QByteArray>
#include <QSize>

#include <cstdint>
#include <vector>

namespace tarvo {

// Writes a video as Motion JPEG in an AVI file: one video stream, every frame a complete JPEG picture
// and a key frame, with the legacy 'idx1' index that every AVI player reads. That is the simplest
// video any player on any system plays, so the built-in media need no codec beyond JPEG.
//
// Layout: RIFF 'AVI ' { LIST 'hdrl' { 'avih', LIST 'strl' { 'strh', 'strf' } }, LIST 'movi' { '00dc'
// per frame }, 'idx1' }. All numbers are little-endian; every chunk is padded to an even size.
class MjpegAviWriter {
public:
    MjpegAviWriter(QSize frameSize, int framesPerSecond);

    // Adds one frame: the bytes of a JPEG picture of the frame size.
    void addFrame(QByteArray jpeg);
    int frameCount() const { return static_cast<int>(frames_.size()); }

    // The whole file.
    QByteArray toAvi() const;

private:
    QSize size_;
    int fps_;
    std::vector<QByteArray> frames_;
};

} // namespace tarvo
