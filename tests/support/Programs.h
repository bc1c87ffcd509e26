#pragma once

#include <QByteArray>
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

QByteArray readFile(const QString& path);
// Writes the bytes, making the folder first; false when it cannot.
bool writeFile(const QString& path, const QByteArray& bytes);
