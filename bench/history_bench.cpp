// The break history with a year in it: 250,000 events (a working day of 685 every day, in a fresh file),
// then what the user-interface thread pays for it: the opening at start-up with its pruning; one event's
// write as the program makes it (the file opened and closed around it), the median and the worst
// of 200 in a burst, and of 50 after a quiet period each (the module, Qt's driver and SQLite loaded
// again); the
// status window opened with its pictures read from the file, worked out and painted (median of 5);
// whether SQLite is still mapped after the quiet period; and SQLite's plan for the status window's
// reading and for the pruning, which must use the index.
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
#include <QPluginLoader>
#include <QSqlDatabase>
#include <QSqlDriverPlugin>
#include <QSqlQuery>
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

constexpr int kEvents = 250000;

double msSince(Steady::time_point start) {
    return std::chrono::duration<double, std::milli>(Steady::now() - start).count();
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// A connection of the benchmark's own, on a driver loaded as the program loads it (QSqlDatabase's own
// loading would keep SQLite in memory and hide what loading it again costs).
QSqlDatabase connect(QPluginLoader& driver, const QString& name, const QString& path) {
    driver.setFileName(QStringLiteral("sqldrivers/qsqlite"));
    driver.setLoadHints({});
    auto* plugin = qobject_cast<QSqlDriverPlugin*>(driver.instance());
    QSqlDatabase db = QSqlDatabase::addDatabase(plugin->create(QStringLiteral("QSQLITE")), name);
    db.setDatabaseName(path);
    db.open();
    return db;
}

bool sqliteMapped() {
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libsqlite3");
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

// A year of days from 8:00, an event every 52 seconds: mostly micropauses, some ended early, natural
// pauses, prompts and exercise breaks, one start and one shut-down a day.
void fill(const QString& path, const QDateTime& now) {
    QPluginLoader driver;
    {
        QSqlDatabase db = connect(driver, QStringLiteral("fill"), path);
        db.transaction();
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO events (at, utc_offset, kind, outcome, seconds, details)"
                                 " VALUES (?, ?, ?, ?, ?, ?)"));
        const int perDay = kEvents / 365 + 1;
        for (int i = 0; i < kEvents; ++i) {
            const int day = i / perDay, n = i % perDay;
            const QDateTime at = QDateTime(now.date().addDays(day - 364), QTime(8, 0)).addSecs(n * 52);
            const char* kind = n == 0            ? "start"
                               : n == perDay - 1 ? "shut down"
                               : n % 50 == 0     ? "exercise break"
                               : n % 25 == 0     ? "exercise prompt"
                                                 : "micropause";
            const char* outcome = n % 7 == 0 ? "ended early" : n % 5 == 0 ? "credited" : "completed";
            q.addBindValue(at.toMSecsSinceEpoch());
            q.addBindValue(at.offsetFromUtc());
            q.addBindValue(QString::fromLatin1(kind));
            q.addBindValue(QString::fromLatin1(outcome));
            q.addBindValue(15);
            q.addBindValue(QStringLiteral("scheduled"));
            q.exec();
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("fill"));
    driver.unload();
}

void printPlan(QTextStream& out, const QString& path, const QString& sql) {
    QPluginLoader driver;
    {
        QSqlQuery q(connect(driver, QStringLiteral("plan"), path));
        q.exec(QStringLiteral("EXPLAIN QUERY PLAN ") + sql);
        out << "plan of " << sql << ":\n";
        while (q.next())
            out << "    " << q.value(3).toString() << '\n';
    }
    QSqlDatabase::removeDatabase(QStringLiteral("plan"));
    driver.unload();
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
    fill(path, clock.localNow());

    HistoryDatabase database(path, programFolder);
    const auto opening = Steady::now();
    database.open(clock.localNow(), clock.localNow().addDays(-HistoryLog::kKeptDays));
    const double openMs = msSince(opening);
    database.unloadModule();
    // As the program writes: the file opened, the event appended, the file closed and the memory given
    // back, each time; in a burst, the driver stays loaded, and after a quiet period it is loaded again.
    const auto unload = [&] { quiet.advance(HistoryLog::kQuietMs); };
    const std::vector<double> burst = timedWrites(log, clock, 200, [] {});
    const std::vector<double> reloaded = timedWrites(log, clock, 50, unload);
    unload();
    const bool mapped = sqliteMapped();
    out << "events: " << kEvents << "\n";
    out << "opening at start-up, the pruning included: " << openMs << " ms\n";
    out << "one event's write in a burst: median " << median(burst) << " ms, worst "
        << *std::max_element(burst.begin(), burst.end()) << " ms\n";
    out << "one event's write after a quiet period, the driver loaded again: median " << median(reloaded)
        << " ms, worst " << *std::max_element(reloaded.begin(), reloaded.end()) << " ms\n";
    out << "SQLite mapped after the quiet period: " << (mapped ? "yes" : "no") << "\n";

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
    out << "the status window with its pictures, loaded, read, worked out and painted, the driver loaded"
           " again: median "
        << median(opens) << " ms\n";
    printPlan(
        out, path,
        QStringLiteral(
            "SELECT at, utc_offset, kind, outcome, seconds, details FROM events WHERE at >= 0 ORDER BY at"));
    printPlan(out, path, QStringLiteral("DELETE FROM events WHERE at < 0"));
    return 0;
}
