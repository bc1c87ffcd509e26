#pragma once

#include <QString>
#include <QStringList>

class QTextStream;

namespace tarvo {

// The media installer's command line:
//   tarvomultimedia [--replace] [FOLDER]
// renders every built-in medium that is missing into FOLDER (default: the program folder) and leaves
// the files that are there alone; --replace renders them all afresh (the build uses it when the
// drawings change). Returns the exit status: 0 done, 1 a file could not be written, 2 a bad command
// line.
int runMultimedia(const QStringList& arguments, const QString& programFolder, QTextStream& out,
                  QTextStream& err);

} // namespace tarvo
