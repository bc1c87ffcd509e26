#pragma once

#include "controls/BlackCover.h"

#include <QPointer>
#include <QRect>

#include <vector>

class QScreen;

namespace tarvo {

// The black covers of one blanked window: every monitor but the window's own is covered while the
// window shows.
class ScreenCovers {
public:
    ScreenCovers() = default;
    ~ScreenCovers();
    ScreenCovers(const ScreenCovers&) = delete;
    ScreenCovers& operator=(const ScreenCovers&) = delete;

    // Covers every monitor but `shown`; an Esc typed on a cover goes to the listener. Covers that are
    // up already are taken away first, so a window that shows again never stacks a second set.
    void cover(QScreen* shown, BlackCover::Listener& listener);
    void uncover();
    // Covers up follow the window to the monitor that shows it now: a window manager may put a
    // full-screen window on another monitor than the one it was meant for (sway puts it on the output
    // that has the focus), and that monitor must not stay under a cover while the other lies open.
    void follow(const QRect& window);
    // The covers up now (for tests).
    std::vector<QWidget*> covers() const;

    // The monitor the user sees a window on: the one that shows the most of it (the first of equals);
    // null when no monitor shows any of it.
    static QScreen* screenShowing(const QRect& window);

private:
    std::vector<QPointer<BlackCover>> covers_;
    QScreen* shown_ = nullptr;
    BlackCover::Listener* listener_ = nullptr;
};

} // namespace tarvo
