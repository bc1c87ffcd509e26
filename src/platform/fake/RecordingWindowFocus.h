#pragma once

#include "core/WindowFocus.h"

#include <vector>

namespace tarvo {

// A session where new windows take the keyboard unless told otherwise; remembers the windows that
// withdrew their offer to take the focus.
class RecordingWindowFocus : public WindowFocus {
public:
    bool needed() const override { return true; }
    void offerNoFocus(QWidget& window) override { windows.push_back(&window); }

    std::vector<const QWidget*> windows;
};

} // namespace tarvo
