#include "multimedia/MjpegAviWriter.h"

#include <QtEndian>

#include <algorithm>
#include <stdexcept>

namespace tarvo {

namespace {

// Flags of the main header and of index entries, as the AVI format defines them.
constexpr std::uint32_t kHasIndex = 0x10;
constexpr std::uint32_t kIsInterleaved = 0x100;
constexpr std::uint32_t kKeyFrame = 0x10;

class Bytes {
public:
    void fourcc(const char (&code)[5]) { out_.append(code, 4); }
    void u32(std::uint32_t v) {
        char b[4];
        qToLittleEndian(v, b);
        out_.append(b, 4);
    }
    void u16(std::uint16_t v) {
        char b[2];
        qToLittleEndian(v, b);
        out_.append(b, 2);
    }
    void raw(const QByteArray& data) { out_.append(data); }

    // Opens a chunk (or a RIFF/LIST with its type) whose size is filled in by close().
    qsizetype open(const char (&id)[5]) {
        fourcc(id);
        u32(0);
        return out_.size();
    }
    void close(qsizetype start) {
        const qsizetype size = out_.size() - start;
        qToLittleEndian(static_cast<std::uint32_t>(size), out_.data() + start - 4);
        if (size % 2)
            out_.append('\0'); // the padding byte is not counted in the chunk's size
    }
    qsizetype size() const { return out_.size(); }
    QByteArray take() { return std::move(out_); }

private:
    QByteArray out_;
};

} // namespace

MjpegAviWriter::MjpegAviWriter(QSize frameSize, int framesPerSecond)
    : size_(frameSize)
    , fps_(framesPerSecond) {
    if (frameSize.isEmpty() || framesPerSecond <= 0)
        throw std::invalid_argument("a video needs a frame size and a frame rate");
}

void MjpegAviWriter::addFrame(QByteArray jpeg) {
    frames_.push_back(std::move(jpeg));
}

QByteArray MjpegAviWriter::toAvi() const {
    const auto count = static_cast<std::uint32_t>(frames_.size());
    const auto width = static_cast<std::uint32_t>(size_.width());
    const auto height = static_cast<std::uint32_t>(size_.height());
    std::uint32_t largest = 0;
    for (const QByteArray& f : frames_)
        largest = std::max(largest, static_cast<std::uint32_t>(f.size()));
    // A reader that allocates from the hint gets room for the largest chunk with its header.
    const std::uint32_t buffer = largest + 8 + (largest % 2);

    Bytes b;
    const qsizetype riff = b.open("RIFF");
    b.fourcc("AVI ");

    const qsizetype hdrl = b.open("LIST");
    b.fourcc("hdrl");
    const qsizetype avih = b.open("avih");
    b.u32(static_cast<std::uint32_t>(1000000 / fps_)); // dwMicroSecPerFrame
    b.u32(buffer * static_cast<std::uint32_t>(fps_));  // dwMaxBytesPerSec
    b.u32(0);                                          // dwPaddingGranularity
    b.u32(kHasIndex | kIsInterleaved);                 // dwFlags
    b.u32(count);                                      // dwTotalFrames
    b.u32(0);                                          // dwInitialFrames
    b.u32(1);                                          // dwStreams
    b.u32(buffer);                                     // dwSuggestedBufferSize
    b.u32(width);
    b.u32(height);
    for (int i = 0; i < 4; ++i)
        b.u32(0); // dwReserved
    b.close(avih);

    const qsizetype strl = b.open("LIST");
    b.fourcc("strl");
    const qsizetype strh = b.open("strh");
    b.fourcc("vids");
    b.fourcc("MJPG");
    b.u32(0);                                // dwFlags
    b.u16(0);                                // wPriority
    b.u16(0);                                // wLanguage
    b.u32(0);                                // dwInitialFrames
    b.u32(1);                                // dwScale
    b.u32(static_cast<std::uint32_t>(fps_)); // dwRate: frames per second is dwRate / dwScale
    b.u32(0);                                // dwStart
    b.u32(count);                            // dwLength, in frames
    b.u32(buffer);                           // dwSuggestedBufferSize
    b.u32(0xFFFFFFFF);                       // dwQuality: the default
    b.u32(0);                                // dwSampleSize: frames vary in size
    b.u16(0);                                // rcFrame: left, top, right, bottom
    b.u16(0);
    b.u16(static_cast<std::uint16_t>(width));
    b.u16(static_cast<std::uint16_t>(height));
    b.close(strh);
    const qsizetype strf = b.open("strf"); // BITMAPINFOHEADER
    b.u32(40);
    b.u32(width);
    b.u32(height);
    b.u16(1);  // biPlanes
    b.u16(24); // biBitCount of the decoded picture
    b.fourcc("MJPG");
    b.u32(width * height * 3); // biSizeImage
    b.u32(0);                  // biXPelsPerMeter
    b.u32(0);                  // biYPelsPerMeter
    b.u32(0);                  // biClrUsed
    b.u32(0);                  // biClrImportant
    b.close(strf);
    b.close(strl);
    b.close(hdrl);

    const qsizetype movi = b.open("LIST");
    // Index offsets count from the 'movi' type code, so the first chunk is at offset 4.
    const qsizetype moviBase = b.size();
    b.fourcc("movi");
    std::vector<std::uint32_t> offsets;
    for (const QByteArray& f : frames_) {
        offsets.push_back(static_cast<std::uint32_t>(b.size() - moviBase));
        const qsizetype chunk = b.open("00dc");
        b.raw(f);
        b.close(chunk);
    }
    b.close(movi);

    const qsizetype idx1 = b.open("idx1");
    for (size_t i = 0; i < frames_.size(); ++i) {
        b.fourcc("00dc");
        b.u32(kKeyFrame);
        b.u32(offsets[i]);
        b.u32(static_cast<std::uint32_t>(frames_[i].size()));
    }
    b.close(idx1);
    b.close(riff);
    return b.take();
}

} // namespace tarvo
