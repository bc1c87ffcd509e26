#include "history/HistoryExport.h"

#include "core/Clock.h"
#include "history/HistoryDatabase.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>

namespace tarvo {

namespace {

const char* const kUsage = "Usage: tarvo history --csv [FILE]\n";

// A field as RFC 4180 wants it: quoted, quotes doubled, when it holds a separator, a quote or a line end.
QString csvField(const QString& text) {
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) &&
        !text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

int fail(const QString& message) {
    std::fprintf(stderr, "tarvo: %s\n", qPrintable(message));
    return 1;
}

QString isoLocalTime(const StoredEvent& e) {
    // The offset always as hours and minutes, also where it is 0 (Qt would write "Z" for UTC).
    const int offset = std::abs(e.utcOffset) / 60;
    return e.at().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) + QLatin1Char(e.utcOffset < 0 ? '-' : '+') +
           QStringLiteral("%1:%2")
               .arg(offset / 60, 2, 10, QLatin1Char('0'))
               .arg(offset % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

QString csvHeader() {
    return QStringLiteral("time,kind,outcome,seconds,details\n");
}

QString csvRow(const StoredEvent& e) {
    return QStringList{isoLocalTime(e), historyKindName(e.kind), csvField(e.outcome),
                       QString::number(e.seconds), csvField(e.details)}
               .join(QLatin1Char(',')) +
           QLatin1Char('\n');
}

int runHistoryCommand(const QStringList& arguments, const QString& historyPath, const QString& programFolder,
                      const Clock& clock) {
    if (arguments.isEmpty() || arguments.first() != QLatin1String("--csv") || arguments.size() > 2) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (!QFileInfo::exists(historyPath))
        return fail(QStringLiteral("no history has been recorded yet (%1)").arg(historyPath));
    // The running program may write meanwhile: the export reads the events there were when it began.
    HistoryDatabase database(historyPath, programFolder);
    if (!database.open(clock.localNow()))
        return fail(QStringLiteral("the history cannot be read: %1").arg(database.problem()));

    QFile standardOutput;
    QSaveFile file;
    QIODevice* device = &standardOutput;
    if (arguments.size() == 2) {
        file.setFileName(arguments[1]);
        device = &file;
        if (!file.open(QIODevice::WriteOnly))
            return fail(QStringLiteral("%1 cannot be written: %2").arg(arguments[1], file.errorString()));
    } else if (!standardOutput.open(stdout, QIODevice::WriteOnly)) {
        return fail(QStringLiteral("standard output cannot be written"));
    }
    QTextStream out(device);
    out << csvHeader();
    const bool read = database.forEach({}, [&](const StoredEvent& e) { out << csvRow(e); });
    out.flush();
    if (!read)
        return fail(QStringLiteral("the history cannot be read: %1").arg(database.problem()));
    if (out.status() != QTextStream::Ok || (device == &file && !file.commit()))
        return fail(QStringLiteral("%1 cannot be written")
                        .arg(arguments.size() == 2 ? arguments[1] : QStringLiteral("standard output")));
    return 0;
}

} // namespace tarvo
