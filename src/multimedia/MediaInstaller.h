#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace tarvo {

struct Medium;

// What an installation did.
struct InstallReport {
    QStringList written; // file names rendered and put in place
    QStringList kept;    // file names that were there already and were left alone
    QString failure;     // empty on success; otherwise what went wrong, naming the folder
};

// Puts the media into `folder`. A file that is there already is left alone (a user may have put a
// clip of their own in its place) unless `replace` is set. Each file is written under a temporary
// name in the same folder and renamed into place when complete, so a reader never sees half a file,
// and an interrupted run leaves nothing behind that looks finished. The first file that cannot be
// written ends the run.
InstallReport installMedia(const QString& folder, const std::vector<Medium>& media, bool replace);

} // namespace tarvo
