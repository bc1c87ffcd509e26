#include "controls/ScreenCovers.h"

#include <QGuiApplication>
#include <QScreen>

namespace tarvo {

ScreenCovers::~ScreenCovers() {
    for (const QPointer<BlackCover>& cover : covers_)
        delete cover.data();
}

void ScreenCovers::cover(QScreen* shown, BlackCover::Listener& listener) {
    uncover();
    for (QScreen* other : QGuiApplication::screens()) {
        if (other == shown)
            continue;
        auto* cover = new BlackCover(other, listener);
        covers_.emplace_back(cover);
        cover->show();
        cover->raise();
    }
}

void ScreenCovers::uncover() {
    for (const QPointer<BlackCover>& cover : covers_)
        if (cover)
            cover->close(); // deletes itself
    covers_.clear();
}

std::vector<QWidget*> ScreenCovers::covers() const {
    std::vector<QWidget*> up;
    for (const QPointer<BlackCover>& cover : covers_)
        if (cover)
            up.push_back(cover.data());
    return up;
}

QScreen* ScreenCovers::screenShowing(const QRect& window) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    std::vector<QRect> monitors;
    for (const QScreen* screen : screens)
        monitors.push_back(screen->geometry());
    const qsizetype most = mostOf(monitors, window);
    return most < 0 ? nullptr : screens[most];
}

qsizetype ScreenCovers::mostOf(const std::vector<QRect>& monitors, const QRect& window) {
    qsizetype most = -1;
    qint64 mostArea = 0;
    for (size_t i = 0; i < monitors.size(); ++i) {
        const QRect shown = monitors[i].intersected(window);
        const qint64 area = qint64{shown.width()} * shown.height();
        if (area > mostArea) {
            most = static_cast<qsizetype>(i);
            mostArea = area;
        }
    }
    return most;
}

} // namespace tarvo
