#include "multimedia/MediumEncoder.h"

#include "multimedia/FrameRenderer.h"
#include "multimedia/Medium.h"
#include "multimedia/MjpegAviWriter.h"

#include <QBuffer>
#include <QImageWriter>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace tarvo {

namespace {

QByteArray encoded(const QImage& image, const char* format, int quality) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    if (quality >= 0) {
        writer.setQuality(quality);
        writer.setOptimizedWrite(true); // Huffman tables fitted to the picture: smaller, same pixels
    }
    if (!writer.write(image))
        throw std::runtime_error("cannot encode a frame as " + std::string(format) + ": " +
                                 writer.errorString().toStdString());
    return bytes;
}

} // namespace

int frameCountOf(const Medium& medium) {
    return std::max(1, static_cast<int>(std::lround(medium.motion.period() * kFramesPerSecond)));
}

QByteArray encodeMedium(const Medium& medium) {
    if (!medium.isVideo())
        return encoded(renderFrame(medium, 0).convertToFormat(QImage::Format_RGB888), "bmp", -1);

    MjpegAviWriter avi(kMediaSize, kFramesPerSecond);
    const int frames = frameCountOf(medium);
    // The frames divide the period evenly, so the frame after the last one would be the first again.
    const float step = medium.motion.period() / static_cast<float>(frames);
    for (int i = 0; i < frames; ++i)
        avi.addFrame(encoded(renderFrame(medium, step * static_cast<float>(i)), "jpeg", kJpegQuality));
    return avi.toAvi();
}

} // namespace tarvo
