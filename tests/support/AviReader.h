#pragma once

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <vector>

// A strict reader of the AVI files that the media writer makes, written from the format's
// description: it walks every chunk, checks sizes, padding and the index against the data, and
// collects what it finds for the tests to compare.
struct AviIndexEntry {
    QByteArray id;
    std::uint32_t flags = 0;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
};

struct AviFile {
    QStringList errors; // every breach of the format found; empty for a sound file

    // 'avih'
    std::uint32_t microSecPerFrame = 0;
    std::uint32_t flags = 0;
    std::uint32_t totalFrames = 0;
    std::uint32_t streams = 0;
    std::uint32_t suggestedBufferSize = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    // 'strh'
    QByteArray streamType, handler;
    std::uint32_t scale = 0, rate = 0, length = 0;
    // 'strf'
    std::int32_t bitmapWidth = 0, bitmapHeight = 0;
    QByteArray compression;
    // 'movi' and 'idx1'
    std::vector<QByteArray> frames;
    std::vector<AviIndexEntry> index;
};

AviFile readAvi(const QByteArray& bytes);
