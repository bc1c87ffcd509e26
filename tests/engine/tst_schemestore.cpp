// Schemes between the store and the exercise table: the title-entry bookkeeping, shorter saves and bad
// numbers (the scheme list: the scheme page's test). (Names with quotes or backslashes are the store file
// codec's concern.)
#include "core/RuntimeError.h"
#include "engine/SchemeStore.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "settings/SettingsStore.h"
#include "support/Raised.h"

#include <QtTest>

using namespace tarvo;

namespace {

std::vector<ExerciseRecord> exercises(int count, const QString& prefix = "ex") {
    std::vector<ExerciseRecord> v(static_cast<size_t>(count) + 1);
    for (int i = 1; i <= count; ++i)
        v[static_cast<size_t>(i)] = {prefix + QString::number(i) + ".avi",
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
        SaveScheme(settings, "Desk", exercises(6), 6);
        QCOMPARE(store.batchesCompleted(), 1);
        // Writes per exercise in the order y, s, file, caption; "Num" last.
        QCOMPARE(store.writes().front().key, "1y");
        QCOMPARE(store.writes()[3].key, "1d");
        QCOMPARE(store.writes().back().key, "Num");

        ExerciseTable table;
        LoadScheme(settings, table, "DESK");
        QCOMPARE(table.ExerciseCount, 6);
        QCOMPARE(table.Exercises.size(), size_t(107));
        QVERIFY(
            std::equal(table.Exercises.begin() + 1, table.Exercises.begin() + 7, exercises(6).begin() + 1));

        // Three over six: the old keys 4 … 6 stay, "Num" hides them.
        SaveScheme(settings, "desk", exercises(3, "new"), 3);
        QCOMPARE(store.model().value("SchemeDesk", "6"), std::optional<QString>("ex6.avi"));
        LoadScheme(settings, table, "Desk");
        QCOMPARE(table.ExerciseCount, 3);
        QCOMPARE(table.Exercises[3].File, "new3.avi");

        // A stored title entry is dropped, and the next entry takes its place.
        auto v = exercises(5);
        v[1].File = "Title.AVI";
        SaveScheme(settings, "T", v, 5);
        LoadScheme(settings, table, "T");
        QCOMPARE(table.ExerciseCount, 4);
        for (int i = 1; i <= 4; ++i)
            QCOMPARE(table.Exercises[static_cast<size_t>(i)].File, QStringLiteral("ex%1.avi").arg(i + 1));
        // The read past the stored entries leaves the defaults just beyond the count.
        QCOMPARE(table.Exercises[5], (ExerciseRecord{QString(), "error!", 0, 0}));
    }

    void missingAndBadSchemes() {
        MemoryRegistryStore store;
        SettingsStore settings(store);
        ExerciseTable table;
        table.ExerciseCount = 9;
        table.Exercises = exercises(9);
        LoadScheme(settings, table, "Nowhere");
        QCOMPARE(table.ExerciseCount, 0);
        QCOMPARE(table.Exercises.size(), size_t(101));
        QCOMPARE(table.Exercises[1], ExerciseRecord{});
        QCOMPARE(table.Exercises[0], titleExercise());

        auto errorFor = [&](const QString& key, const QString& text) {
            MemoryRegistryStore bad;
            SettingsStore s(bad);
            SaveScheme(s, "B", exercises(2), 2);
            bad.model().setValue("SchemeB", key, text);
            ExerciseTable t;
            const auto e = raised<RuntimeError>([&] { LoadScheme(s, t, "B"); });
            return e && e->number() == vberr::TypeMismatch && e->context().contains(key) &&
                   e->context().contains("SchemeB");
        };
        QVERIFY(errorFor("Num", "two"));
        QVERIFY(errorFor("2y", "yes"));
        QVERIFY(errorFor("1s", QString()));
        store.model().setValue("Scheme50%2", "Num", "-101"); // too few for even the title entry
        const auto claims = raised<RuntimeError>([&] { LoadScheme(settings, table, "50%2"); });
        QVERIFY(claims && claims->number() == vberr::SubscriptOutOfRange &&
                claims->context() == "Scheme \"50%2\" claims -101 exercises.");
    }
};

QTEST_GUILESS_MAIN(TestSchemeStore)
#include "tst_schemestore.moc"
