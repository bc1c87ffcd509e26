#pragma once

#include "core/MediaCommands.h"

#include <QStringList>

namespace tarvo {

// Records the command strings sent to the media device, in order; every command succeeds.
class RecordingMediaCommands : public MediaCommands {
public:
    int send(const QString& command) override {
        commands_ << command;
        return 0;
    }
    const QStringList& commands() const { return commands_; }
    void clear() { commands_.clear(); }

private:
    QStringList commands_;
};

} // namespace tarvo
