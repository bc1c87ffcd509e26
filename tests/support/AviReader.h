#pragma once

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <vector>

// A strict reader of the AVI files that the media writer makes (one MJPEG video stream of key frames
// with an 'idx1' index), written from the format's description: it walks every chunk, checks sizes
// and padding, holds the headers against each other and against the frames, and checks that the
// index names every frame in order.
struct AviFile {
    QStringList errors; // every breach of the format found
    std::uint32_t microSecPerFrame = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<QByteArray> frames;
};

AviFile readAvi(const QByteArray& bytes);
