#pragma once

#include <QColor>

namespace tarvo::palette {

// Calm, low-contrast colours that stay apart after JPEG compression; the hints are the one warm accent.
inline const QColor wallTop{0xEA, 0xF2, 0xEF};
inline const QColor wallBottom{0xD6, 0xE6, 0xE1};
inline const QColor floor{0xC6, 0xD2, 0xCB};
inline const QColor shirt{0x5C, 0xA7, 0x9D};
inline const QColor sleeve{0x66, 0xB2, 0xA8}; // a touch lighter, so arms stand out against the chest
inline const QColor trousers{0x5A, 0x6B, 0x80};
inline const QColor shoes{0x4A, 0x4F, 0x57};
inline const QColor skin{0xF1, 0xC5, 0xA2};
inline const QColor palmSkin{0xF8, 0xD9, 0xBF};
inline const QColor hair{0x73, 0x4F, 0x3A};
inline const QColor eyeWhite{0xFF, 0xFF, 0xFF};
inline const QColor eye{0x33, 0x3D, 0x44};
inline const QColor mouth{0xB0, 0x5E, 0x55};
inline const QColor cheek{0xF0, 0x9A, 0x8C};
inline const QColor chair{0x7E, 0x8B, 0x99};
inline const QColor desk{0xE0, 0xC0, 0x92};
inline const QColor keyboard{0xF3, 0xF3, 0xEF};
inline const QColor monitor{0x4B, 0x55, 0x61};
inline const QColor screen{0xAF, 0xD3, 0xDF};
inline const QColor sky{0xBF, 0xE0, 0xF0};
inline const QColor hillNear{0x8F, 0xC0, 0x8A};
inline const QColor hillFar{0xB5, 0xD6, 0xB0};
inline const QColor hint{0xE0, 0x7A, 0x5F};
inline const QColor title{0x3B, 0x62, 0x5C};

// Outlines are a darker shade of what they surround, so shapes read without harsh black lines.
inline QColor outlineOf(const QColor& fill) {
    return fill.darker(150);
}

} // namespace tarvo::palette
