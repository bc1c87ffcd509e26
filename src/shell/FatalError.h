#pragma once

#include <QString>

#include <exception>

namespace tarvo {

class MessageBox;

// The text the user sees for an error that no handler took care of: a run-time error's report, a
// damaged or unwritable settings file's message, or a generic line for anything else.
QString fatalErrorText(const std::exception& error);

// Where every error that no handler takes care of ends: the text is shown in a message box titled
// "Tarvo Micropause" (when there is a screen to show it on and `box` is given), printed on standard
// error, and the program ends with exit status 1.
[[noreturn]] void endWithFatalError(const std::exception& error, MessageBox* box);

} // namespace tarvo
