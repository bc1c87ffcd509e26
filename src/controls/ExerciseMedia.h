#pragma once

#include <QSize>
#include <QString>

#include <cstdint>

namespace tarvo {

class MediaCommands;
class MediaSurface;

// The media procedures of the exercise player, shared by the scheme editor's preview: a video (".avi")
// opened on the one device alias "tarvox" inside a media surface, or a picture (".bmp") loaded into it.
// The commands' results are not examined: a file that cannot be shown shows nothing.
class ExerciseMedia {
public:
    // `programFolder`: where a media file named without a folder lies.
    ExerciseMedia(MediaCommands& commands, QString programFolder);

    // The file's extension (its last four characters, lower-cased): ".bmp" shows the picture, ".avi"
    // opens the video at the size that `viewAm` chooses, anything else shows nothing (the surface's
    // picture is cleared). The caller plays a video (PlayVideo) and makes the surface visible.
    QString ShowExerciseMedia(MediaSurface& surface, const QString& fileName, std::int32_t viewAm);
    // Leaves the surface hidden, cleared, sized automatically and showing the file's picture, or
    // nothing when it cannot be read.
    void ShowPicture(MediaSurface& surface, const QString& fileName);
    // Closes any video, sizes the surface by the size index and opens the file inside it.
    void OpenVideo(MediaSurface& surface, const QString& fileName, std::int32_t sizeIndex);
    void PlayVideo();  // over and over, until it is closed
    void CloseVideo(); // harmless when nothing is open

    // A video's size for the size index ("ViewAm"): 0.75, 1, 1.5, 2 or 3 times 320 × 240, less one
    // pixel each way (239 × 179 … 959 × 719); any other index gives −1 × −1.
    static QSize videoSize(std::int32_t sizeIndex);
    // The file a media file name stands for: one without a folder ("/" or "\") lies in the program
    // folder; any other is taken as it is.
    QString mediaFile(const QString& fileName) const;

private:
    MediaCommands& commands_;
    QString programFolder_;
};

} // namespace tarvo
