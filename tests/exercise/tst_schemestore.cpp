// Schemes between the store and the exercise table: the title-entry bookkeeping, shorter saves, names
// that matter to the store file, and bad numbers.
#include "FileRegistryStore.h"
#include "MemoryRegistryStore.h"
#include "RuntimeError.h"
#include "SchemeStore.h"
#include "SettingsStore.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace tarvo;

namespace {

std::vector<ExerciseRecord> exercises(int count, const QString& prefix = QStringLiteral("ex")) {
    std::vector<ExerciseRecord> v(static_cast<size_t>(count) + 1);
    for (int i = 1; i <= count; ++i)
        v[static_cast<size_t>(i)] = {prefix + QString::number(i) + QStringLiteral(".avi"),
                                     QStringLiteral("Caption %1").arg(i), i % 2, 10 * i};
    return v;
}

} // namespace

class TestSchemeStore : public QObject {
    Q_OBJECT

private slots:
    void roundTripAndShorterSave() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        SaveScheme(settings, QStringLiteral("Desk"), exercises(6), 6);
        QCOMPARE(store.batchesCompleted(), 1);
        // Writes per exercise in the order y, s, file, caption; "Num" last.
        QCOMPARE(store.writes().front().key, QStringLiteral("1y"));
        QCOMPARE(store.writes()[3].key, QStringLiteral("1d"));
        QCOMPARE(store.writes().back().key, QStringLiteral("Num"));

        ExerciseTable table;
        LoadScheme(settings, table, QStringLiteral("DESK"));
        QCOMPARE(table.ExerciseCount, 6);
        QCOMPARE(table.Exercises.size(), size_t(107));
        QCOMPARE(table.Exercises[0], titleExercise());
        for (int i = 1; i <= 6; ++i)
            QCOMPARE(table.Exercises[static_cast<size_t>(i)], exercises(6)[static_cast<size_t>(i)]);

        // Three over six: the old keys 4 … 6 stay, "Num" hides them.
        SaveScheme(settings, QStringLiteral("desk"), exercises(3, QStringLiteral("new")), 3);
        QCOMPARE(store.model().value(QStringLiteral("SchemeDesk"), QStringLiteral("6")),
                 std::optional<QString>(QStringLiteral("ex6.avi")));
        LoadScheme(settings, table, QStringLiteral("Desk"));
        QCOMPARE(table.ExerciseCount, 3);
        QCOMPARE(table.Exercises.size(), size_t(104));
        QCOMPARE(table.Exercises[3].File, QStringLiteral("new3.avi"));
        QCOMPARE(table.Exercises[4], ExerciseRecord{});
    }

    void storedTitleEntriesAreDropped() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        auto v = exercises(5);
        v[1].File = QStringLiteral("Title.AVI");
        SaveScheme(settings, QStringLiteral("T"), v, 5);
        ExerciseTable table;
        LoadScheme(settings, table, QStringLiteral("T"));
        QCOMPARE(table.ExerciseCount, 4);
        for (int i = 1; i <= 4; ++i)
            QCOMPARE(table.Exercises[static_cast<size_t>(i)].File, QStringLiteral("ex%1.avi").arg(i + 1));
        // The read past the stored entries leaves the defaults just beyond the count.
        QCOMPARE(table.Exercises[5], (ExerciseRecord{QString(), QStringLiteral("error!"), 0, 0}));
        QCOMPARE(table.Exercises[0].Caption, QStringLiteral("Gently now..."));
    }

    void missingAndBadSchemes() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        ExerciseTable table;
        table.ExerciseCount = 9;
        table.Exercises = exercises(9);
        LoadScheme(settings, table, QStringLiteral("Nowhere"));
        QCOMPARE(table.ExerciseCount, 0);
        QCOMPARE(table.Exercises.size(), size_t(101));
        QCOMPARE(table.Exercises[1], ExerciseRecord{});
        QCOMPARE(table.Exercises[0], titleExercise());

        auto errorFor = [&](const QString& key, const QString& text) {
            MemoryRegistryStore bad;
            SettingsStore s(bad);
            SaveScheme(s, QStringLiteral("B"), exercises(2), 2);
            bad.model().setValue(QStringLiteral("SchemeB"), key, text);
            try {
                ExerciseTable t;
                LoadScheme(s, t, QStringLiteral("B"));
            } catch (const RuntimeError& e) {
                return e.number() == vberr::TypeMismatch && e.context().contains(key) &&
                       e.context().contains(QStringLiteral("SchemeB"));
            }
            return false;
        };
        QVERIFY(errorFor(QStringLiteral("Num"), QStringLiteral("two")));
        QVERIFY(errorFor(QStringLiteral("2y"), QStringLiteral("yes")));
        QVERIFY(errorFor(QStringLiteral("1s"), QString()));
    }

    void namesThatMatterToTheFile() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("registry.reg"));
        const QStringList names{QStringLiteral("My \"quoted\" scheme"), QStringLiteral("back\\slash"),
                                QStringLiteral("[brackets]"), QStringLiteral("Übungen für Äste")};
        {
            FileRegistryStore store(path);
            SettingsStore settings(store);
            for (const QString& name : names)
                SaveScheme(settings, name, exercises(2, name), 2);
        }
        FileRegistryStore reread(path);
        SettingsStore settings(reread);
        for (const QString& name : names) {
            ExerciseTable table;
            LoadScheme(settings, table, name);
            QCOMPARE(table.ExerciseCount, 2);
            QCOMPARE(table.Exercises[2].File, name + QStringLiteral("2.avi"));
        }
    }

    void schemeList() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        QVERIFY(readSchemeList(settings).isEmpty());
        store.model().setValue(kSchemesSection, QStringLiteral("Num"), QStringLiteral("3"));
        store.model().setValue(kSchemesSection, QStringLiteral("1"), QStringLiteral("*Short Break"));
        store.model().setValue(kSchemesSection, QStringLiteral("3"), QStringLiteral("Mine"));
        QCOMPARE(readSchemeList(settings), (QStringList{"*Short Break", "", "Mine"}));
    }
};

QTEST_GUILESS_MAIN(TestSchemeStore)
#include "tst_schemestore.moc"
