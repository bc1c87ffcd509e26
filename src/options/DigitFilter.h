#pragma once

#include <QString>

#include <cstdint>

namespace tarvo {

// The key filter of the options dialog's digit fields (`CheckNumText`): returns the key code to let
// through, or 0 to swallow the key. Backspace always passes, anything but a digit never does. A digit
// typed over a selection or into an empty field passes unchecked (it replaces what is there);
// otherwise it passes only when the field's number with the digit appended stays within Min and Max.
// So no field can be typed past Max, while each field's own bounds are left to its spinner and Apply.
std::int16_t CheckNumText(std::int16_t KeyAscii, const QString& text, bool hasSelection, std::int32_t Min,
                          std::int32_t Max);

} // namespace tarvo
