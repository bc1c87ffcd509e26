#include "support/Programs.h"

#include <QProcess>

ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& home,
                      int timeoutMs) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", home + "/config");
    env.insert("XDG_RUNTIME_DIR", home); // a private instance lock
    env.insert("QT_QPA_PLATFORM", "offscreen");
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(TARVO_PROGRAM_DIR "/") + program, arguments);
    if (!p.waitForFinished(timeoutMs))
        return {}; // and the process is killed with `p`
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}
