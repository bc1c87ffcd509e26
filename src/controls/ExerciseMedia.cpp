#include "controls/ExerciseMedia.h"

#include "controls/MediaSurface.h"
#include "core/MediaCommands.h"
#include "core/VbConvert.h"

namespace tarvo {

namespace {
// The child-window style bit: the video is a window inside the surface.
constexpr long long kChildStyle = 0x40000000;
} // namespace

ExerciseMedia::ExerciseMedia(MediaCommands& commands, QString programFolder)
    : commands_(commands)
    , programFolder_(std::move(programFolder)) {}

QString ExerciseMedia::ShowExerciseMedia(MediaSurface& surface, const QString& fileName,
                                         std::int32_t viewAm) {
    const QString extension = fileName.right(4).toLower();
    if (extension == QLatin1String(".bmp"))
        ShowPicture(surface, fileName);
    else if (extension == QLatin1String(".avi"))
        OpenVideo(surface, fileName, viewAm);
    else
        surface.clearPicture(); // nothing to show: not the last exercise's picture either
    return extension;
}

void ExerciseMedia::ShowPicture(MediaSurface& surface, const QString& fileName) {
    surface.setVisible(false);
    surface.clearPicture();
    surface.setAutoSize(true);
    surface.loadPicture(mediaFile(fileName));
}

void ExerciseMedia::OpenVideo(MediaSurface& surface, const QString& fileName, std::int32_t sizeIndex) {
    CloseVideo();
    surface.clearPicture();
    surface.setAutoSize(false);
    const QSize size = videoSize(sizeIndex);
    surface.resize(size); // a size of −1 × −1 leaves the surface empty
    // All three at once: the file name goes in as it is, even with a "%2" of its own.
    commands_.send(
        QStringLiteral("open \"%1\" type AVIVideo alias tarvox parent %2 style %3")
            .arg(mediaFile(fileName), QString::number(surface.handle()), QString::number(kChildStyle)));
    commands_.send(QStringLiteral("put tarvox window at 0 0 %1 %2").arg(size.width()).arg(size.height()));
}

void ExerciseMedia::PlayVideo() {
    commands_.send(QStringLiteral("play tarvox repeat"));
}

void ExerciseMedia::CloseVideo() {
    commands_.send(QStringLiteral("close tarvox"));
}

QSize ExerciseMedia::videoSize(std::int32_t sizeIndex) {
    static constexpr double kFactors[] = {0.75, 1.0, 1.5, 2.0, 3.0};
    const double factor = sizeIndex >= 0 && sizeIndex < 5 ? kFactors[sizeIndex] : 0.0;
    return {vb::toLong(factor * 320 - 1), vb::toLong(factor * 240 - 1)};
}

QString ExerciseMedia::mediaFile(const QString& fileName) const {
    if (fileName.contains(QLatin1Char('/')) || fileName.contains(QLatin1Char('\\')))
        return fileName;
    return programFolder_ + QLatin1Char('/') + fileName;
}

} // namespace tarvo
