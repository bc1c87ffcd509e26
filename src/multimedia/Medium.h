#pragma once

#include "multimedia/Camera.h"
#include "multimedia/Hint.h"
#include "multimedia/Motion.h"
#include "multimedia/Scenery.h"

#include <QString>

#include <vector>

namespace tarvo {

// One built-in medium, described as data: how the camera sees the figure, the movement through key
// poses, the wordless hints and, for the opening, a title. One renderer turns every medium into its
// frames. Whether it is a video or a picture follows from the file name, as it does for the player.
struct Medium {
    QString file; // lower case, no blanks: ".avi" for a looping video, ".bmp" for a held pose
    View view;
    Framing framing;
    Motion motion;
    std::vector<Hint> hints{};
    Backdrop backdrop = Backdrop::Wall;
    QString title{}; // written across the top of every frame
    // The parts that must stay whole inside the picture all through the movement.
    std::vector<Anchor> keepInFrame{};

    bool isVideo() const { return file.endsWith(QLatin1String(".avi")); }
};

// The camera set-ups the media share. Framings are centred on the part the movement is about.
namespace framing {
inline const Framing upperBody{{0, 40, 12}, 98}; // head to desk, hands in front of the chest
inline const Framing hands{{0, 44, 16}, 80};     // closer: the hands in front of the chest, the head whole
inline const Framing armsUp{{0, 55, 8}, 122};    // room for hands reaching overhead
inline const Framing headAndShoulders{{0, 58, 2}, 56};
} // namespace framing

namespace views {
inline const View front{0, 10};
inline const View threeQuarter{32, 12};
inline const View side{90, 6};
} // namespace views

} // namespace tarvo
