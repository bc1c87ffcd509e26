#include "support/Programs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return QDir().mkpath(QFileInfo(path).absolutePath()) &&
           f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}
