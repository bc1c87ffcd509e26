#include "multimedia/RunMultimedia.h"

#include "multimedia/Catalogue.h"
#include "multimedia/MediaInstaller.h"

#include <QTextStream>

namespace tarvo {

namespace {

const QString kUsage = QStringLiteral(
    "Usage: tarvomultimedia [--replace] [FOLDER]\n"
    "Renders the exercise videos and pictures of Tarvo Micropause's built-in schemes, and its opening\n"
    "title.avi, into FOLDER (default: the folder this program is in). Files that are there already are\n"
    "left alone.\n"
    "\n"
    "  --replace   render every file afresh, replacing those that are there\n"
    "  --help      show this text\n");

} // namespace

int runMultimedia(const QStringList& arguments, const QString& programFolder, QTextStream& out,
                  QTextStream& err) {
    bool replace = false;
    QString folder;
    for (const QString& a : arguments) {
        if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            out << kUsage;
            return 0;
        }
        if (a == QLatin1String("--replace")) {
            replace = true;
        } else if (a.startsWith(QLatin1Char('-')) || !folder.isEmpty()) {
            err << "tarvomultimedia: unexpected argument \"" << a << "\"\n" << kUsage;
            return 2;
        } else {
            folder = a;
        }
    }
    if (folder.isEmpty())
        folder = programFolder;

    const InstallReport report = installMedia(folder, builtInMedia(), replace);
    if (!report.failure.isEmpty()) {
        err << "tarvomultimedia: " << report.failure << '\n';
        return 1;
    }
    return 0;
}

} // namespace tarvo
