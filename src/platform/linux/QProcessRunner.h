#pragma once

#include "core/ProcessRunner.h"

#include <QStringList>

namespace tarvo {

// Runs command lines with QProcess. The command line is split with the classic rules (blanks
// separate words, double quotes group them). When the first word is not an existing program, the
// words are joined again one by one, as the classic loader does with an unquoted path that contains
// blanks ("/home/me/my apps/regedit /s x" finds "/home/me/my apps/regedit"), so a program folder with
// a blank in its name still works.
class QProcessRunner : public ProcessRunner {
public:
    void runAndWait(const QString& commandLine) override;

    // The program and its arguments that a command line stands for (exposed for tests).
    static QStringList resolve(const QString& commandLine);
};

} // namespace tarvo
