// The history file against real SQLite files in a temporary folder: an older layout brought up to date
// with its events kept, old events pruned, the export's rows; files that cannot be written (damaged,
// of a newer version, held by another connection, in a folder that cannot be made) and recording off;
// the log kept short; and the summary the pictures draw.
#include "history/HistoryExport.h"
#include "history/HistoryLog.h"
#include "history/HistorySummary.h"
#include "settings/Options.h"
#include "support/FakeContext.h"

#include <QElapsedTimer>
#include <QPluginLoader>
#include <QSqlDatabase>
#include <QSqlDriverPlugin>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>

using namespace tarvo;

namespace {

// A connection of the test's own, as another program would have it; closed, and its driver unloaded,
// when it goes.
struct OtherConnection {
    QPluginLoader driver{"sqldrivers/qsqlite"};
    explicit OtherConnection(const QString& path) {
        driver.setLoadHints({});
        auto* plugin = qobject_cast<QSqlDriverPlugin*>(driver.instance());
        QVERIFY(plugin);
        QSqlDatabase db = QSqlDatabase::addDatabase(plugin->create("QSQLITE"), "other");
        db.setDatabaseName(path);
        db.setConnectOptions("QSQLITE_BUSY_TIMEOUT=0");
        QVERIFY(db.open());
    }
    ~OtherConnection() {
        QSqlDatabase::database("other", false).close();
        QSqlDatabase::removeDatabase("other");
        driver.unload();
    }
    QVariant value(const QString& sql) {
        QSqlQuery q(QSqlDatabase::database("other", false));
        return q.exec(sql) && q.next() ? q.value(0) : QVariant(q.lastError().text());
    }
    bool exec(const QString& sql) { return QSqlQuery(QSqlDatabase::database("other", false)).exec(sql); }
};

HistoryEvent happened(HistoryKind kind, const QDateTime& at, QLatin1String outcome = {},
                      std::int64_t seconds = 0, const QString& details = {}) {
    return {kind, at, QString(outcome), seconds, details};
}

bool sqliteMapped() {
    QFile maps("/proc/self/maps");
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libsqlite3");
}

struct Rig : FakeContext {
    QTemporaryDir dir;
    QString path = dir.filePath("tarvo/history.sqlite");
    HistoryLog log{path, TARVO_PROGRAM_DIR, ctx.settings, clock, timeline};
    int count() { return static_cast<int>(log.eventsSince({}).size()); }
};

} // namespace

class TestHistoryDatabase : public QObject {
    Q_OBJECT

private slots:
    // A zone with summer time: an event of the first layout is told in the offset of its own day.
    void initTestCase() {
        qputenv("TZ", "Europe/Helsinki");
        tzset();
    }

    // A file of the first layout (time in UTC only) gains the offset column and the index, keeps its
    // events, which export in the zone's local time of their day (summer time, +03:00, in October), and loses
    // those older than 400 days at the first opening. New events keep the offset they happened in; the export
    // quotes what needs it.
    void anOlderFileIsBroughtUpToDate() {
        Rig rig;
        QDir().mkpath(QFileInfo(rig.path).absolutePath());
        const QDateTime now = rig.clock.localNow();
        {
            OtherConnection v1(rig.path);
            QVERIFY(v1.exec(
                "CREATE TABLE events (id INTEGER PRIMARY KEY, at INTEGER NOT NULL, kind TEXT NOT NULL,"
                " outcome TEXT NOT NULL DEFAULT '', seconds INTEGER NOT NULL DEFAULT 0,"
                " details TEXT NOT NULL DEFAULT '')"));
            QVERIFY(v1.exec("PRAGMA user_version = 1"));
            for (const int daysAgo : {401, 399})
                QVERIFY(v1.exec(
                    QString("INSERT INTO events (at, kind, outcome, seconds) VALUES (%1, 'micropause', "
                            "'completed', 15)")
                        .arg(now.addDays(-daysAgo).toMSecsSinceEpoch())));
        }
        const QDateTime india = QDateTime(QDate(2026, 11, 23), QTime(14, 30), Qt::OffsetFromUTC, 19800);
        rig.log.record(happened(HistoryKind::ExerciseBreak, india, outcome::Quit, 42, "2 of 6, \"Arms\""));
        QCOMPARE(rig.log.problem(), QString());
        // SQLite stays in memory for a quiet period after each use, no longer, and comes back for the next.
        QVERIFY(sqliteMapped());
        rig.timeline.advance(HistoryLog::kQuietMs);
        QVERIFY(!sqliteMapped());
        // Qt's register of the driver's handle type must not be left pointing into the unloaded driver.
        QCOMPARE(QMetaType::fromName("sqlite3*").name(), "sqlite3*");
        const std::vector<StoredEvent> events = rig.log.eventsSince({});
        QCOMPARE(events.size(), 2u);
        QCOMPARE(csvHeader() + csvRow(events[0]) + csvRow(events[1]),
                 "time,kind,outcome,seconds,details\n"
                 "2025-10-20T09:00:00+03:00,micropause,completed,15,\n"
                 "2026-11-23T14:30:00+05:30,exercise break,quit,42,\"2 of 6, \"\"Arms\"\"\"\n");
        OtherConnection after(rig.path);
        QCOMPARE(after.value("PRAGMA user_version").toInt(), kHistorySchemaVersion);
        QCOMPARE(after.value("PRAGMA journal_mode").toString(), "wal");
        QSqlQuery plan(QSqlDatabase::database("other", false));
        QVERIFY(plan.exec("EXPLAIN QUERY PLAN SELECT * FROM events WHERE at >= 0 ORDER BY at") &&
                plan.next());
        QVERIFY2(plan.value(3).toString().contains("INDEX events_at"), qPrintable(plan.value(3).toString()));
        // The log, read again at every opening, is emptied into the file as it grows past 256 KiB.
        for (int i = 0; i < 150; ++i)
            rig.log.record(
                happened(HistoryKind::Micropause, now, outcome::Completed, 15, QString(4000, 'x')));
        QVERIFY(QFileInfo(rig.path + "-wal").size() < 300 * 1024);
        QCOMPARE(rig.count(), 152);
    }

    // Whatever the file, the program runs on and says why nothing is recorded; a damaged file is kept
    // aside, unchanged, and a new one started; a newer file is left alone; a file another connection
    // holds fails at once, and its events follow once it is free; recording off keeps nothing.
    void filesThatCannotBeWritten() {
        Rig damaged;
        QDir().mkpath(QFileInfo(damaged.path).absolutePath());
        QFile garbage(damaged.path);
        QVERIFY(garbage.open(QIODevice::WriteOnly) && garbage.write(QByteArray(8192, 'x')) == 8192);
        garbage.close();
        damaged.log.record(happened(HistoryKind::Startup, damaged.clock.localNow()));
        QCOMPARE(damaged.count(), 1);
        const QString aside = damaged.path + ".damaged-20261123-090000";
        QVERIFY2(damaged.log.problem().contains(aside), qPrintable(damaged.log.problem()));
        QFile kept(aside);
        QVERIFY(kept.open(QIODevice::ReadOnly) && kept.readAll() == QByteArray(8192, 'x'));

        Rig newer;
        QDir().mkpath(QFileInfo(newer.path).absolutePath());
        OtherConnection(newer.path).exec("PRAGMA user_version = 3");
        newer.log.record(happened(HistoryKind::Startup, newer.clock.localNow()));
        QCOMPARE(newer.log.problem(), "History is not recorded: " + newer.path +
                                          " was written by a newer version of Tarvo Micropause.");
        QCOMPARE(OtherConnection(newer.path).value("SELECT count(*) FROM sqlite_master").toInt(), 0);

        Rig held;
        held.log.record(happened(HistoryKind::Startup, held.clock.localNow()));
        {
            OtherConnection other(held.path);
            QVERIFY(other.exec("BEGIN EXCLUSIVE"));
            QElapsedTimer waited;
            waited.start();
            held.log.record(happened(HistoryKind::Micropause, held.clock.localNow(), outcome::Completed, 15));
            QVERIFY(waited.elapsed() < 1000); // nothing waits for the lock
            QCOMPARE(held.log.problem(),
                     "History is not recorded: " + held.path + " is in use by another program.");
            QVERIFY(other.exec("COMMIT"));
        }
        held.log.record(happened(HistoryKind::Shutdown, held.clock.localNow()));
        QCOMPARE(held.log.problem(), QString());
        QCOMPARE(held.count(), 3);
        QVERIFY(held.log.clear());
        QCOMPARE(held.count(), 0);
        held.log.setRecording(false);
        held.log.record(happened(HistoryKind::Startup, held.clock.localNow()));
        QCOMPARE(held.count(), 0);

        Rig nowhere;
        QFile("/dev/null").link(nowhere.dir.filePath("tarvo")); // a file where the folder should be
        nowhere.log.record(happened(HistoryKind::Startup, nowhere.clock.localNow()));
        QVERIFY2(nowhere.log.problem().startsWith("History is not recorded: cannot create the folder"),
                 qPrintable(nowhere.log.problem()));
    }

    // A day with every kind of break, and a stretch from the evening before across midnight into a run
    // that is still going on: the counts by day, the longest stretch of each day, today's work and marks.
    void summary() {
        const QDate yesterday(2026, 11, 22), today(2026, 11, 23);
        auto at = [](QDate d, int h, int m) { return QDateTime(d, QTime(h, m)).toMSecsSinceEpoch(); };
        auto e = [](std::int64_t ms, HistoryKind kind, QLatin1String outcome = {}, std::int64_t seconds = 0) {
            return StoredEvent{ms, 0, kind, QString(outcome), seconds, {}};
        };
        using K = HistoryKind;
        const std::vector<StoredEvent> events = {
            e(at(yesterday, 8, 0), K::Startup),
            e(at(yesterday, 9, 0), K::Micropause, outcome::Completed, 60),  // 1 h of work
            e(at(yesterday, 9, 30), K::Hold, outcome::CameAfter, 1200),     // held, but work goes on
            e(at(yesterday, 10, 0), K::Micropause, outcome::EndedEarly, 3), // no break: work goes on
            e(at(yesterday, 10, 30), K::ExercisePrompt, outcome::Later, 600),
            e(at(yesterday, 11, 1), K::ExerciseBreak, outcome::Completed, 300), // 2 h of work
            e(at(yesterday, 11, 40), K::ExercisePrompt, outcome::Closed),
            e(at(yesterday, 12, 0), K::Sleep, outcome::Away, 3600), // away until 13:00
            e(at(yesterday, 13, 30), K::Shutdown),
            e(at(yesterday, 22, 0), K::Startup),
            e(at(today, 0, 30), K::Micropause, outcome::Credited, 600), // 2 h 30 across midnight
            e(at(today, 1, 0), K::Hold, outcome::Covered, 300),
        };
        const HistorySummary s =
            summariseHistory(events, yesterday.addDays(-1), QDateTime(today, QTime(2, 0)));
        QCOMPARE(s.days.size(), 3u);
        QCOMPARE(s.days[0].taken + s.days[0].skipped + s.days[0].postponed + s.days[0].longestStretch,
                 std::int64_t{0});
        const DayTotals& y = s.days[1];
        QCOMPARE(QList<std::int64_t>({y.taken, y.skipped, y.postponed, y.longestStretch}),
                 QList<std::int64_t>({2, 2, 1, 7200}));
        const DayTotals& t = s.days[2];
        QCOMPARE(QList<std::int64_t>({t.taken, t.skipped, t.postponed, t.longestStretch}),
                 QList<std::int64_t>({1, 0, 0, 4800}));
        QCOMPARE(s.todayWork.size(), 2u);
        QCOMPARE(QList<std::int64_t>(
                     {s.todayWork[0].from, s.todayWork[0].to, s.todayWork[1].from, s.todayWork[1].to}),
                 QList<std::int64_t>({0, 1800, 2400, 7200}));
        QCOMPARE(s.todayMarks.size(), 2u);
        QCOMPARE(s.todayMarks[0].at, std::int64_t{1800});
        QVERIFY(s.todayMarks[0].type == TimelineMark::Type::Taken);
        QVERIFY(s.todayMarks[1].type == TimelineMark::Type::Held && s.todayMarks[1].seconds == 300);
        QCOMPARE(stretchText(7140) + " / " + stretchText(1800), "1 h 59 / 30 min");
    }
};

QTEST_GUILESS_MAIN(TestHistoryDatabase)
#include "tst_historydatabase.moc"
