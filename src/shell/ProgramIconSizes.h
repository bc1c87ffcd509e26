#pragma once

namespace tarvo {

// The sizes, in pixels, at which the build draws the program icon: every size that panels, menus,
// window titles and docks commonly use. Qt scales from the nearest one for any other size.
inline constexpr int kProgramIconSizes[] = {16, 20, 22, 24, 32, 40, 48, 64, 96, 128, 256};

} // namespace tarvo
