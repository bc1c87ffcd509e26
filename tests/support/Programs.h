#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>

// The programs of the build's program folder, run as a user would.
struct ProgramRun {
    int status = -1; // -1: it crashed or did not end in time
    QString out, err;
};

// Runs a program of the program folder on the offscreen platform with `home` as its settings folder
// ($XDG_CONFIG_HOME is <home>/config) and runtime folder.
ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& home,
                      int timeoutMs = 60000);

inline QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Writes the bytes, making the folder first; false when it cannot.
inline bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return QDir().mkpath(QFileInfo(path).absolutePath()) &&
           f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}
