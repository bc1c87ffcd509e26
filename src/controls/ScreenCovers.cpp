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
    shown_ = shown;
    listener_ = &listener;
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
    listener_ = nullptr;
}

void ScreenCovers::follow(const QRect& window) {
    QScreen* now = screenShowing(window);
    if (listener_ && now && now != shown_)
        cover(now, *listener_);
}

std::vector<QWidget*> ScreenCovers::covers() const {
    std::vector<QWidget*> up;
    for (const QPointer<BlackCover>& cover : covers_)
        if (cover)
            up.push_back(cover.data());
    return up;
}

QScreen* ScreenCovers::screenShowing(const QRect& window) {
    QScreen* most = nullptr;
    qint64 mostArea = 0;
    for (QScreen* screen : QGuiApplication::screens()) {
        const QRect shown = screen->geometry().intersected(window);
        const qint64 area = qint64{shown.width()} * shown.height();
        if (area > mostArea) {
            most = screen;
            mostArea = area;
        }
    }
    return most;
}

} // namespace tarvo
