#pragma once

#include <QString>

namespace tarvo {

// Starting a helper program and waiting for it, as first-run initialisation does with the registry
// import and the media program. A program that cannot be started is not reported: the call returns
// as if it had run.
class ProcessRunner {
public:
    virtual ~ProcessRunner() = default;
    // Runs one command line (split with the classic quoting rules) and blocks until it has ended.
    virtual void runAndWait(const QString& commandLine) = 0;
};

} // namespace tarvo
