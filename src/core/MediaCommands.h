#pragma once

#include <QString>

namespace tarvo {

// The media device's command strings, as the classic multimedia command interface takes them:
//   open "<file>" type AVIVideo alias <a> parent <window> style <n>
//   put <a> window at <x> <y> <w> <h>
//   play <a> [repeat] | pause <a> | resume <a> | stop <a> | close <a>
// A video opened with a parent window plays inside it, as a child window at the given place and size.
// Every call returns at once with an error number (0: done) and never throws; a file that cannot be
// played shows nothing.
class MediaCommands {
public:
    virtual ~MediaCommands() = default;
    virtual int send(const QString& command) = 0;
};

} // namespace tarvo
