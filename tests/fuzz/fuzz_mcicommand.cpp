// Command strings of the multimedia command interface: those the forms send, and any other text.
// A string is a command or one of the interpreter's error numbers.
#include "platform/linux/MciCommand.h"

#include <cstdint>
#include <cstdlib>

using namespace tarvo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto result = parseMciCommand(text);
    if (const int* error = std::get_if<int>(&result)) {
        switch (*error) {
        case mcierr::UnrecognizedKeyword:
        case mcierr::UnrecognizedCommand:
        case mcierr::MissingCommandString:
        case mcierr::MissingStringArgument:
        case mcierr::BadInteger:
        case mcierr::MissingParameter:
        case mcierr::OutOfRange:
            return 0;
        default:
            std::abort();
        }
    }
    // The video helper is told the window's size; a rectangle built past the range of int has none.
    const MciCommand& c = std::get<MciCommand>(result);
    volatile int extent = c.window.width();
    extent = c.window.height();
    (void)extent;
    return 0;
}
