#pragma once

#include "core/WindowSession.h"

#include <vector>

namespace tarvo {

// An X11 session unless told it is a Wayland one; remembers the windows that withdrew their offer to
// take the focus.
class RecordingWindowSession : public WindowSession {
public:
    bool wayland() const override { return inWayland; }
    void offerNoFocus(QWidget& window) override { windows.push_back(&window); }

    bool inWayland = false;
    std::vector<const QWidget*> windows;
};

} // namespace tarvo
