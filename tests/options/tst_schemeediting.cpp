// The scheme editor's decisions without its widgets: the list of schemes on Save As and Delete, the
// built-in and storable names, stored file names, the exercise table's edits and the digit filter.
#include "engine/SchemeStore.h"
#include "options/DigitField.h"
#include "options/SchemeEditing.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "settings/SettingsStore.h"

#include <QtTest>

using namespace tarvo;

namespace {
const QStringList kFour = {"*Short Break", "*Medium Break", "*Long Break", "Desk"};

struct Store {
    Store(const QStringList& names) { writeSchemeList(settings, names); }
    QStringList keys() { return memory.model().keys(kSchemesSection); }
    MemoryRegistryStore memory;
    SettingsStore settings{memory};
};
} // namespace

class TestSchemeEditing : public QObject {
    Q_OBJECT

private slots:
    // A listed name in any case is found before the sentinel, which goes again; a new one stays as the
    // last entry.
    void saveAsLooksUpWithASentinel() {
        Store s(kFour);
        QVERIFY(findOrAppendSchemeName(s.settings, "*medium BREAK"));
        QCOMPARE(readSchemeList(s.settings), kFour);
        QCOMPARE(s.keys(), QStringList({"Num", "1", "2", "3", "4"}));
        QCOMPARE(s.memory.writes().back().key, "5"); // the sentinel was written first

        QVERIFY(!findOrAppendSchemeName(s.settings, "Evening"));
        QCOMPARE(readSchemeList(s.settings), kFour + QStringList{"Evening"});
        Store empty({});
        QVERIFY(!findOrAppendSchemeName(empty.settings, "First"));
        QCOMPARE(readSchemeList(empty.settings), QStringList{"First"});
    }

    // The first match (in any case) goes, the later ones move up and the last key is deleted; the
    // scheme's own section stays. An unlisted name changes nothing.
    void deleteShiftsTheList() {
        Store s(kFour + QStringList{"Evening"});
        s.settings.write("SchemeDesk", "Num", "0");
        QVERIFY(removeSchemeName(s.settings, "DESK"));
        QCOMPARE(readSchemeList(s.settings), kFour.mid(0, 3) + QStringList{"Evening"});
        QCOMPARE(s.keys(), QStringList({"Num", "1", "2", "3", "4"}));
        QVERIFY(s.memory.model().hasSection("SchemeDesk"));
        QVERIFY(removeSchemeName(s.settings, "evening"));
        QVERIFY(!removeSchemeName(s.settings, "Nowhere"));
        QCOMPARE(readSchemeList(s.settings), kFour.mid(0, 3));
    }

    void builtInAndStorableNames() {
        const std::pair<QString, bool> builtIn[] = {{"*Short Break", true},  {"*Long Break", true},
                                                    {"*short break", false}, {"Short Break", false},
                                                    {"*Short", false},       {"", false}};
        for (const auto& [name, expected] : builtIn)
            QVERIFY2(isBuiltInScheme(name) == expected, qPrintable(name));

        const std::pair<QString, bool> storable[] = {
            {"Desk work 2", true}, {"*Ünïcode", true}, {"a\\b", false},
            {"[a", false},         {"a]", false},      {"a\nb", false},
            {"a\r", false},        {"a\tb", false},    {QString("x") + QChar(0x2028), false}};
        for (const auto& [name, expected] : storable)
            QVERIFY2(isStorableSchemeName(name) == expected, qPrintable(name));
        QCOMPARE(typedSchemeName("  Desk  work "), "Desk  work");
        QCOMPARE(typedSchemeName("    "), "");
    }

    void storedFileNames() {
        const std::tuple<QString, QString, QString> cases[] = {
            {"/opt/tarvo/neck.avi", "/opt/tarvo", "neck.avi"},
            {"/OPT/Tarvo/clips/a.avi", "/opt/tarvo/", "clips/a.avi"},
            {"/opt/tarvo2/a.avi", "/opt/tarvo", "/opt/tarvo2/a.avi"},
            {"/home/u/b.bmp", "/opt/tarvo", "/home/u/b.bmp"}};
        for (const auto& [chosen, folder, stored] : cases)
            QCOMPARE(storedExerciseFile(chosen, folder), stored);
    }

    // Appending fills the next place and grows a full table by twenty; removing closes the gap; a
    // move stops at either end.
    void tableEdits() {
        ExerciseTable t{{titleExercise(), {"a.avi", "A", 0, 5}, {"b.avi", "B", 1, 6}}, 2, "Desk"};
        appendExercise(t, "C", "c.bmp");
        QCOMPARE(t.ExerciseCount, 3);
        QCOMPARE(t.Exercises.size(), size_t(24));
        QCOMPARE(t.Exercises[3], (ExerciseRecord{"c.bmp", "C", 1, 30}));
        QCOMPARE(t.Exercises[1].File, "a.avi");
        removeExercise(t, 1);
        QCOMPARE(t.ExerciseCount, 2);
        QCOMPARE(t.Exercises[1].File, "b.avi");
        QCOMPARE(t.Exercises[2].File, "c.bmp");
        QCOMPARE(positionAfterRemoval(3, 2), 2);
        QCOMPARE(positionAfterRemoval(1, 2), 1);

        const std::tuple<int, int, int, std::optional<int>> moves[] = {
            {0, 1, 3, {}}, {2, 3, 3, {}}, {0, 2, 3, 1}, {2, 2, 3, 3}, {0, 0, 0, {}}, {1, 2, 3, {}}};
        for (const auto& [button, p, n, target] : moves)
            QCOMPARE(reorderTarget(button, p, n), target);
        QCOMPARE(secondsOfLengthText("45 seconds"), 45);
        QCOMPARE(secondsOfLengthText(" seconds"), 0);
    }

    // Backspace passes, other non-digits never; a digit over a selection or into an empty field
    // passes unchecked, else only while the number stays within 1 … 999.
    void digitFilter() {
        const std::tuple<char, QString, bool, bool> keys[] = {
            {'7', "99", false, true}, {'0', "100", false, false}, {'5', "100", true, true},
            {'0', "", false, true},   {'\b', "999", false, true}, {'a', "", false, false},
            {'0', "0", false, false}, {'-', "1", false, false},   {'3', "12x", false, true}};
        for (const auto& [key, text, selected, passes] : keys)
            QCOMPARE(CheckNumText(key, text, selected, 1, 999), passes ? std::int16_t(key) : std::int16_t(0));
    }
};

QTEST_GUILESS_MAIN(TestSchemeEditing)
#include "tst_schemeediting.moc"
