// The history's module in a program that, like the real one, does not link Qt SQL: loaded for each use
// and unloaded after the quiet period, round after round, it takes Qt SQL, the SQLite driver and SQLite
// out of memory with it, and nothing the program kept points into what went: the events read, a
// problem the module told in its own words, Qt's register of types.
#include "history/HistoryLog.h"
#include "support/FakeContext.h"

#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

using namespace tarvo;

namespace {

// Which of the history's libraries are mapped, in the order asked.
QByteArray mappedOfTheHistory() {
    QFile maps("/proc/self/maps");
    const QByteArray all = maps.open(QIODevice::ReadOnly) ? maps.readAll() : QByteArray();
    QByteArray found;
    for (const char* library : {"history-store.so", "libQt6Sql", "libqsqlite", "libsqlite3"})
        if (all.contains(library))
            found += QByteArray(library) + ' ';
    return found;
}

} // namespace

class TestHistoryModule : public QObject {
    Q_OBJECT

private slots:
    void loadedAndUnloadedAgain() {
        FakeContext f;
        QTemporaryDir dir;
        HistoryLog log(dir.filePath("history.sqlite"), TARVO_PROGRAM_DIR, f.ctx.settings, f.clock,
                       f.timeline);
        for (int round = 1; round <= 4; ++round) {
            log.record({HistoryKind::Micropause, f.clock.localNow(), QString(outcome::Completed), round,
                        QString(origin::Menu)});
            const std::vector<StoredEvent> events = log.eventsSince({});
            QCOMPARE(mappedOfTheHistory(), "history-store.so libQt6Sql libqsqlite libsqlite3 ");
            f.timeline.advance(HistoryLog::kQuietMs);
            QCOMPARE(mappedOfTheHistory(), "");
            QCOMPARE(int(events.size()), round);
            QCOMPARE(events.back().outcome + ' ' + events.back().details, "completed menu");
            QCOMPARE(events.back().seconds, round);
            // Every type Qt has a number for still has its description (a name read from it).
            QByteArrayList names;
            for (int id = QMetaType::User + 1; QMetaType::isRegistered(id); ++id)
                names += QMetaType(id).name();
            QVERIFY2(names.contains("sqlite3*"), names.join(' '));
            // Qt goes through every logging category it knows: none of Qt SQL's may be left among them.
            QLoggingCategory::setFilterRules("qt.sql.*=true");
        }
        // Without Qt's driver the module says so, a text of its own that outlives it. (Setting the paths
        // has Qt refresh every plugin loader it knows: none of Qt SQL's may be left among them.)
        const QStringList paths = QCoreApplication::libraryPaths();
        QCoreApplication::setLibraryPaths({dir.path()});
        HistoryDatabase database(dir.filePath("other.sqlite"), TARVO_PROGRAM_DIR);
        QVERIFY(!database.open(f.clock.localNow()));
        database.unloadModule();
        QCoreApplication::setLibraryPaths(paths);
        QCOMPARE(mappedOfTheHistory(), "");
        QCOMPARE(database.problem(), "Qt's SQLite driver is not installed (libqt6sql6-sqlite)");
        QVERIFY(database.failure() == HistoryDatabase::Failure::NoDriver);
    }
};

QTEST_GUILESS_MAIN(TestHistoryModule)
#include "tst_historymodule.moc"
