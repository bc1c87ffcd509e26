#pragma once

namespace tarvo {

// Guards the creation of the application object. Qt ends a program that finds no display to start on
// with its platform plugin advice and an abort (a core dump, exit status 134). While a guard lives,
// Qt's messages are held back; should Qt give up, the program ends instead with one line on standard
// error, "Tarvo Micropause needs a graphical desktop: <why>", and exit status 1. When the guard goes,
// the messages it held are passed on as they came.
class DesktopRequired {
public:
    DesktopRequired();
    ~DesktopRequired();
    DesktopRequired(const DesktopRequired&) = delete;
    DesktopRequired& operator=(const DesktopRequired&) = delete;
};

} // namespace tarvo
