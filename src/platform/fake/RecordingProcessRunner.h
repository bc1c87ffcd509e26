#pragma once

#include "core/ProcessRunner.h"

#include <QStringList>

#include <functional>

namespace tarvo {

// Records the command lines it is asked to run; a test may make "running" one do something.
class RecordingProcessRunner : public ProcessRunner {
public:
    void runAndWait(const QString& commandLine) override {
        commands_ << commandLine;
        if (onRun)
            onRun(commandLine);
    }
    const QStringList& commands() const { return commands_; }
    std::function<void(const QString&)> onRun;

private:
    QStringList commands_;
};

} // namespace tarvo
