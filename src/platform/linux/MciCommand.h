#pragma once

#include <QRect>
#include <QString>
#include <QStringView>

#include <variant>

namespace tarvo {

// Error numbers of the classic multimedia command interface that the interpreter reports.
namespace mcierr {
inline constexpr int UnrecognizedKeyword = 259;
inline constexpr int UnrecognizedCommand = 261;
inline constexpr int InvalidDeviceName = 263;
inline constexpr int MissingCommandString = 267;
inline constexpr int MissingStringArgument = 269;
inline constexpr int BadInteger = 270;
inline constexpr int MissingParameter = 273;
inline constexpr int FileNotFound = 275;
inline constexpr int OutOfRange = 282;
inline constexpr int CannotLoadDriver = 266;
inline constexpr int DuplicateAlias = 289;
} // namespace mcierr

// One command string, understood. Words are blank-separated and compared without regard to case; a
// word in double quotes may hold blanks (the file of an open).
struct MciCommand {
    enum class Verb { Open, Put, Play, Pause, Resume, Stop, Close };
    Verb verb = Verb::Open;
    QString device;        // the alias the command is for (open: the alias it gives, else the file)
    QString file;          // open
    QString type;          // open, optional
    qulonglong parent = 0; // open: the window the video plays in (0: none)
    long long style = 0;   // open: window style bits (only the child-window style has a meaning here)
    QRect window;          // put ... window at x y w h; a negative size stays as given
    bool repeat = false;   // play ... repeat
};

// The command, or the error number of why it is not one.
std::variant<MciCommand, int> parseMciCommand(QStringView text);

} // namespace tarvo
