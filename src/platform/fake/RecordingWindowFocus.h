#pragma once

#include "core/WindowFocus.h"

#include <vector>

namespace tarvo {

// Remembers the windows that withdrew their offer to take the focus.
class RecordingWindowFocus : public WindowFocus {
public:
    void offerNoFocus(QWidget& window) override { windows.push_back(&window); }

    std::vector<const QWidget*> windows;
};

} // namespace tarvo
