// The break history with a year in it: 250,000 events (a working day of 685 every day, in a fresh file,
// written by history_fill), then what the user-interface thread pays for it: the opening at start-up
// with its pruning; one event's write as the program makes it (the file opened and closed around it),
// the median and the worst of 200 in a burst, and of 50 after a quiet period each (the history's
// module, Qt SQL, its driver and SQLite loaded again); the status window opened with its pictures read
// from the file, worked out and painted (median of 5); whether any of them is still mapped after the
// quiet period; and SQLite's plan for the status window's reading and for the pruning, which must use
// the index. Like the program, the benchmark links no Qt SQL.
//   build/bench/history_bench
#include "core/Clock.h"
#include "history/HistoryLog.h"
#include "history/HistoryPanel.h"
#include "micropause/MainForm.h"
#include "micropause/frmTarvo.h"
#include "platform/fake/ManualTimer.h"
#include "platform/linux/FileRegistryStore.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxPlatform.h"
#include "settings/SettingsStore.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <QVariant>

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

using namespace tarvo;
using Steady = std::chrono::steady_clock;

namespace {

double msSince(Steady::time_point start) {
    return std::chrono::duration<double, std::milli>(Steady::now() - start).count();
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

bool sqlMapped() {
    QFile maps(QStringLiteral("/proc/self/maps"));
    const QByteArray all = maps.open(QIODevice::ReadOnly) ? maps.readAll() : QByteArray();
    return all.contains("history-store") || all.contains("libQt6Sql") || all.contains("libsqlite3");
}

std::vector<double> timedWrites(HistoryLog& log, const Clock& clock, int count,
                                const std::function<void()>& before) {
    std::vector<double> writes;
    for (int i = 0; i < count; ++i) {
        before();
        const auto start = Steady::now();
        log.record({HistoryKind::Micropause, clock.localNow(), QStringLiteral("completed"), 15,
                    QStringLiteral("scheduled")});
        writes.push_back(msSince(start));
    }
    return writes;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTextStream out(stdout);
    QTemporaryDir dir;
    const Clock& clock = systemClock();
    const QString path = dir.filePath(QStringLiteral("history.sqlite"));
    FileRegistryStore store(dir.filePath(QStringLiteral("registry.reg")));
    SettingsStore settings(store);
    ManualTimeline quiet; // the benchmark says when the quiet period has passed
    const QString programFolder = QStringLiteral(TARVO_PROGRAM_DIR); // the history's module
    HistoryLog log(path, programFolder, settings, clock, quiet, releaseFreedMemory);
    log.record({HistoryKind::Startup, clock.localNow(), {}, 0, {}}); // the file, at its layout
    // A year of events, written by a program of its own that links Qt SQL; it tells the plans too.
    QProcess filler;
    filler.start(QCoreApplication::applicationDirPath() + QStringLiteral("/history_fill"), {path});
    if (!filler.waitForFinished(300000) || filler.exitCode() != 0) {
        out << "history_fill failed\n";
        return 1;
    }
    const QString plans = QString::fromLocal8Bit(filler.readAllStandardOutput());

    const auto unload = [&] { quiet.advance(HistoryLog::kQuietMs); };
    unload(); // as at start-up, nothing of the history is loaded yet
    HistoryDatabase database(path, programFolder);
    const auto opening = Steady::now();
    database.open(clock.localNow(), clock.localNow().addDays(-HistoryLog::kKeptDays));
    const double openMs = msSince(opening);
    database.unloadModule();
    // As the program writes: the file opened, the event appended, the file closed and the memory given
    // back, each time; in a burst, the module stays loaded, and after a quiet period it is loaded again.
    const std::vector<double> burst = timedWrites(log, clock, 200, [] {});
    const std::vector<double> reloaded = timedWrites(log, clock, 50, unload);
    unload();
    const bool mapped = sqlMapped();
    out << "opening at start-up, the module's loading and the pruning included: " << openMs << " ms\n";
    out << "one event's write in a burst: median " << median(burst) << " ms, worst "
        << *std::max_element(burst.begin(), burst.end()) << " ms\n";
    out << "one event's write after a quiet period, the module loaded again: median " << median(reloaded)
        << " ms, worst " << *std::max_element(reloaded.begin(), reloaded.end()) << " ms\n";
    out << "the module, Qt SQL or SQLite mapped after the quiet period: " << (mapped ? "yes" : "no") << "\n";

    std::vector<double> opens;
    MainForm status;
    status.setStatusPanelMaker([&] { return std::make_unique<HistoryPanel>(log, clock); });
    for (int i = 0; i < 5; ++i) {
        unload();
        const auto start = Steady::now();
        status.showStatus();
        status.form()->grab(); // painted
        opens.push_back(msSince(start));
        status.form()->hide();
        QCoreApplication::processEvents(); // unloaded, as when the user closes it
    }
    out << "the status window with its pictures, loaded, read, worked out and painted, the module loaded"
           " again: median "
        << median(opens) << " ms\n";
    out << plans;
    return 0;
}
