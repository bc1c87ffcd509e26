// The exercise-schemes page on fakes: removing, moving and adding exercises, Save As and Delete with
// their questions, live edits of the selected exercise, the two scheme lists, title editing and the
// preview; and its decisions without the widgets (the scheme list's edits, names, stored file names,
// the table's edits and the digit filter).
#include "core/RegFileCodec.h"
#include "engine/SchemeStore.h"
#include "options/DigitField.h"
#include "options/SchemeEditing.h"
#include "options/SchemePage.h"
#include "support/FakeContext.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

#include <functional>

using namespace tarvo;

namespace {

const QStringList kSchemes = {"*Short Break", "*Medium Break", "*Long Break", "Desk"};
using Answer = MessageBox::Answer;

std::vector<ExerciseRecord> exercises(const QString& prefix, int count) {
    std::vector<ExerciseRecord> v(static_cast<size_t>(count) + 1);
    for (int k = 1; k <= count; ++k)
        v[static_cast<size_t>(k)] = {prefix + QString::number(k) + ".avi", prefix + QString::number(k), 1,
                                     10 * k};
    return v;
}

// The page on a store with four schemes ("*Long Break" holds one exercise, the others three), the
// default "*Medium break" loaded and shown, as the options dialog opens it.
struct Rig {
    Rig() {
        writeSchemeList(fc.ctx.settings, kSchemes);
        for (const QString& name : kSchemes) {
            const int count = name == "*Long Break" ? 1 : 3;
            SaveScheme(fc.ctx.settings, name, exercises(name.mid(name.startsWith('*') ? 1 : 0, 4), count),
                       count);
        }
        table().CurrentScheme = "*Medium break";
        LoadScheme(fc.ctx.settings, table(), table().CurrentScheme);
        page.attachSchemeList2(&cmbSchemes2);
        page.setDialogDefaultButton(&cmdOK);
        cmdOK.setDefault(true);
        page.LoadSchemes();
        page.LoadL();
        page.DetailIt();
        fc.store.clearWrites();
    }
    template <typename T = QWidget>
    T* w(const char* name) const {
        return page.findChild<T*>(QLatin1String(name));
    }
    ExerciseTable& table() { return fc.ctx.exercises; }
    QTreeWidget* l() const { return w<QTreeWidget>("l"); }
    void click(const char* button) const { w<QAbstractButton>(button)->click(); }
    void select(int k) const { l()->setCurrentItem(l()->topLevelItem(k - 1)); }
    int selected() const { return l()->indexOfTopLevelItem(l()->currentItem()) + 1; }
    QStringList titles() const {
        QStringList t;
        for (int i = 0; i < l()->topLevelItemCount(); ++i)
            t << l()->topLevelItem(i)->text(0);
        return t;
    }
    void chooseScheme(QComboBox* list, const QString& name) { list->setCurrentIndex(list->findText(name)); }
    // Clicks the button and lets `inside` work the modal form it opens.
    void withForm(const char* button, std::function<void(QDialog&)> inside) {
        QMetaObject::invokeMethod(
            qApp,
            [inside] {
                if (auto* form = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
                    inside(*form);
            },
            Qt::QueuedConnection);
        click(button);
    }
    static void answer(QDialog& form, const QString& text) {
        form.findChild<QLineEdit*>()->setText(text);
        form.findChild<QPushButton*>("cmdOK")->click();
    }
    QString shownText(size_t i) const { return fc.messages.shown().at(i).text; }

    FakeContext fc{"/opt/tarvo"};
    SchemePage page{fc.ctx};
    QComboBox cmbSchemes2;
    QPushButton cmdOK;
};

// A store holding only the scheme list, for the decisions without the page.
struct Store {
    Store(const QStringList& names) { writeSchemeList(settings, names); }
    QStringList keys() { return memory.model().keys(kSchemesSection); }
    MemoryRegistryStore memory;
    SettingsStore settings{memory};
};

} // namespace

class TestSchemePage : public QObject {
    Q_OBJECT

private slots:
    void theDefaultSchemeIsShownOnOpening() {
        Rig r;
        QCOMPARE(r.l()->headerItem()->text(0), "     Exercise");
        QCOMPARE(r.titles(), QStringList({"Medi1", "Medi2", "Medi3"}));
        QCOMPARE(r.l()->topLevelItem(1)->text(1), "20 seconds");
        QCOMPARE(r.w<QGroupBox>("framex")->title(), "Medi1 settings");
        QCOMPARE(r.w<QComboBox>("cmbSchemes")->currentText(), "*Medium Break");
        QCOMPARE(r.cmbSchemes2.currentText(), "*Medium Break");
        QVERIFY(!r.page.listIsEmpty());
    }

    // The only exercise cannot go; the last of several goes after Yes and its predecessor is selected;
    // nothing is saved.
    void removeExercises() {
        Rig r;
        r.select(3);
        r.click("cmdRemove"); // unanswered: No
        r.fc.messages.answerNext(Answer::Yes);
        r.click("cmdRemove");
        QCOMPARE(r.shownText(0), "Are you sure you want to remove this exercise from the list?");
        QCOMPARE(r.fc.messages.shown().size(), 2u);
        QCOMPARE(r.titles(), QStringList({"Medi1", "Medi2"}));
        QCOMPARE(r.selected(), 2);
        QCOMPARE(r.table().ExerciseCount, 2);
        QVERIFY(r.fc.store.writes().empty());

        r.chooseScheme(r.w<QComboBox>("cmbSchemes"), "*Long Break");
        r.click("cmdRemove");
        QCOMPARE(r.shownText(2), "Cannot delete exercise.  A scheme must contain at least one exercise.");
        QCOMPARE(r.fc.messages.shown()[2].buttons, MessageBox::Buttons::Ok);
        QCOMPARE(r.table().ExerciseCount, 1);
    }

    // Item 2 moved up becomes item 1, stays selected and takes its file (the ends: tableEdits).
    void reorderExercises() {
        Rig r;
        r.select(2);
        r.click("cmdReorder_0");
        QCOMPARE(r.titles(), QStringList({"Medi2", "Medi1", "Medi3"}));
        QCOMPARE(r.selected(), 1);
        QCOMPARE(r.l()->topLevelItem(0)->text(1), "20 seconds");
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[1], (ExerciseRecord{"Medi2.avi", "Medi2", 1, 20}));
    }

    // A file from the program folder is stored by its relative name, any other by its full path; a
    // new exercise lasts 30 seconds and is saved at once.
    void addExercises() {
        Rig r;
        r.fc.files.chooseNext("/OPT/tarvo/clips/Reach.avi");
        r.withForm("cmdAdd", [](QDialog& form) { Rig::answer(form, "Reach up"); });
        const FileDialog::OpenRequest& asked = r.fc.files.requests().front();
        QCOMPARE(asked.title, "Add an Exercise");
        QCOMPARE(asked.defaultExtension, ".avi");
        QCOMPARE(asked.filter, "Video (*.avi)|*.avi;|Pictures (*.bmp)|*.bmp|All files|*.*");
        QCOMPARE(r.table().ExerciseCount, 4);
        QCOMPARE(r.table().Exercises[4], (ExerciseRecord{"clips/Reach.avi", "Reach up", 1, 30}));
        QCOMPARE(r.fc.store.model().value("Scheme*Medium Break", "Num"), std::optional<QString>("4"));
        QCOMPARE(r.l()->topLevelItem(3)->text(1), "30 seconds");

        r.fc.files.chooseNext("/home/u/stretch.bmp");
        r.withForm("cmdAdd", [](QDialog& form) { Rig::answer(form, ""); });
        QCOMPARE(r.table().Exercises[5].File, "/home/u/stretch.bmp");
        r.fc.files.cancelNext();
        r.click("cmdAdd");
        r.fc.files.chooseNext("/home/u/other.bmp");
        r.withForm("cmdAdd",
                   [](QDialog& form) { QTest::keyClick(form.findChild<QLineEdit*>(), Qt::Key_Escape); });
        QCOMPARE(r.table().ExerciseCount, 5);
        QCOMPARE(r.titles().size(), 5);
    }

    // An existing name in another case is replaced after Yes (No keeps the form open); a new one is
    // appended and made current in both lists; blanks save nothing; a name the store cannot hold is
    // refused and the form stays open.
    void saveAs() {
        Rig r;
        r.table().Exercises[1].Seconds = 99;
        r.withForm("cmdSaveAs", [&r](QDialog& form) {
            Rig::answer(form, " a]b ");
            QVERIFY(form.isVisible());
            Rig::answer(form, "*long BREAK");
            QVERIFY(form.isVisible());
            r.fc.messages.answerNext(Answer::Yes);
            Rig::answer(form, "*long BREAK");
        });
        QCOMPARE(r.shownText(0), "A scheme name cannot contain \\, [ or ] or a line break.");
        QCOMPARE(r.shownText(1), "'*long BREAK' already exists.  Replace existing scheme?");
        QCOMPARE(r.fc.messages.shown().size(), 3u);
        QCOMPARE(readSchemeList(r.fc.ctx.settings), kSchemes);
        QCOMPARE(r.table().CurrentScheme, "*long BREAK");
        QCOMPARE(r.fc.store.model().value("Scheme*Long Break", "1s"), std::optional<QString>("99"));
        QCOMPARE(r.fc.store.model().value("Scheme*Long Break", "Num"), std::optional<QString>("3"));
        QCOMPARE(r.w<QComboBox>("cmbSchemes")->currentText(), "*Long Break");
        QCOMPARE(r.cmbSchemes2.currentText(), "*Long Break");

        r.withForm("cmdSaveAs", [](QDialog& form) { Rig::answer(form, "   "); });
        r.withForm("cmdSaveAs", [](QDialog& form) { // by keyboard
            QTest::keyClicks(form.findChild<QLineEdit*>(), "  Evening ");
            QTest::keyClick(form.findChild<QLineEdit*>(), Qt::Key_Return);
        });
        QCOMPARE(readSchemeList(r.fc.ctx.settings), kSchemes + QStringList{"Evening"});
        QCOMPARE(r.table().CurrentScheme, "Evening");
        QCOMPARE(r.cmbSchemes2.currentText(), "Evening");
        QCOMPARE(r.fc.store.model().value("SchemeEvening", "3"), std::optional<QString>("Medi3.avi"));
        QVERIFY(!r.fc.store.model().hasSection("Scheme") && !r.fc.store.model().hasSection("Schemea]b"));
        QCOMPARE(r.fc.messages.shown().size(), 3u);
        parseRegFile(serializeRegFile(r.fc.store.model()), "store"); // still a readable file
    }

    // A built-in scheme stays; a user scheme goes from the list (the first becomes current and is
    // written under "Exercises"); the list's keys: deleteShiftsTheList.
    void deleteSchemes() {
        Rig r;
        r.chooseScheme(r.w<QComboBox>("cmbSchemes"), "*Short Break");
        r.click("cmdDelete");
        QCOMPARE(r.shownText(0),
                 "You cannot delete the built-in schemes.  The built-in schemes are indicated "
                 "with a leading asterisk.");
        r.chooseScheme(&r.cmbSchemes2, "Desk");
        r.click("cmdDelete"); // No
        QCOMPARE(r.shownText(1), "Are you sure you want to delete this scheme?");
        QCOMPARE(readSchemeList(r.fc.ctx.settings), kSchemes);
        r.fc.messages.answerNext(Answer::Yes);
        r.click("cmdDelete");
        QCOMPARE(readSchemeList(r.fc.ctx.settings), kSchemes.mid(0, 3));
        QCOMPARE(r.table().CurrentScheme, "*Short Break");
        QCOMPARE(r.fc.store.model().value("Exercises", "Scheme"), std::optional<QString>("*Short Break"));
        QCOMPARE(r.w<QComboBox>("cmbSchemes")->currentIndex(), 0);
        QCOMPARE(r.cmbSchemes2.currentIndex(), 0);
        QCOMPARE(r.titles(), QStringList({"Shor1", "Shor2", "Shor3"}));
    }

    // The frame's edits show in the list at once and reach the table through LtoExercises; a double
    // click toggles done; only digits can be typed.
    void liveEdits() {
        Rig r;
        auto* seconds = r.w<QLineEdit>("txtXsecs");
        seconds->setText("45");
        QCOMPARE(r.l()->topLevelItem(0)->text(1), "45 seconds");
        r.w<QCheckBox>("chkDoit")->click();
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[1].Seconds, 45);
        QCOMPARE(r.table().Exercises[1].Include, 0);
        emit r.l()->itemDoubleClicked(r.l()->topLevelItem(0), 0);
        QVERIFY(r.w<QCheckBox>("chkDoit")->isChecked());
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[1].Include, 1);

        seconds->selectAll();
        QTest::keyClicks(seconds, "7x0-5");
        QCOMPARE(seconds->text(), "705");
        QTest::keyClick(seconds, Qt::Key_Up);
        QCOMPARE(r.l()->topLevelItem(0)->text(1), "706 seconds");
        r.select(2);
        QCOMPARE(seconds->text(), "20");

        // The field shows and keeps what the store holds, past what can be typed.
        r.table().Exercises[1].Seconds = 1200;
        r.table().Exercises[2].Seconds = -5;
        r.page.LoadL();
        r.page.DetailIt();
        QCOMPARE(seconds->text(), "1200");
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[1].Seconds, 1200);
        QCOMPARE(r.table().Exercises[2].Seconds, -5);
    }

    // Choosing in either list chooses in both, saving the scheme that is left with its edits.
    void schemeListsAgree() {
        Rig r;
        auto* cmbSchemes = r.w<QComboBox>("cmbSchemes");
        r.w<QLineEdit>("txtXsecs")->setText("77");
        r.chooseScheme(cmbSchemes, "Desk");
        QCOMPARE(r.cmbSchemes2.currentText(), "Desk");
        QCOMPARE(r.table().CurrentScheme, "Desk");
        QCOMPARE(r.titles(), QStringList({"Desk1", "Desk2", "Desk3"}));
        QCOMPARE(r.fc.store.model().value("Scheme*Medium Break", "1s"), std::optional<QString>("77"));
        r.chooseScheme(&r.cmbSchemes2, "*Long Break");
        QCOMPARE(cmbSchemes->currentText(), "*Long Break");
        QCOMPARE(r.table().CurrentScheme, "*Long Break");
        r.page.LoadSchemes();
        QCOMPARE(cmbSchemes->currentIndex(), 2);
        QCOMPARE(r.cmbSchemes2.currentIndex(), 2);
    }

    // While a title is edited in the list, Enter belongs to the edit, not to the dialog's OK.
    void titleEditing() {
        Rig r;
        r.page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&r.page));
        r.select(2);
        r.l()->editItem(r.l()->topLevelItem(1), 0);
        auto* editor = r.l()->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        QVERIFY(!r.cmdOK.isDefault());
        editor->setText("Neck & back");
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(r.cmdOK.isDefault());
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[2].Caption, "Neck & back");
        QCOMPARE(r.w<QGroupBox>("framex")->title(), "Neck && back settings");
    }

    // The preview surface covers the list with Done at its lower right; Preview shows and plays it,
    // Close hides it with the video still open, Done closes the video.
    void previewCoversTheList() {
        Rig r;
        r.page.resize(r.page.sizeHint());
        r.page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&r.page));
        r.page.layOut();
        QWidget* movie = r.w("picMovie");
        QVERIFY(!movie->isVisible());
        QCOMPARE(movie->geometry(), r.l()->geometry());
        const QRect done = r.w("cmdDone")->geometry();
        QVERIFY(movie->rect().contains(done));
        QVERIFY(done.right() > movie->width() * 3 / 4 && done.bottom() > movie->height() * 3 / 4);
        QVERIFY(r.page.rect().contains(r.w("framex")->geometry()));

        r.select(2);
        r.click("cmdPreview");
        QVERIFY(movie->isVisible() && r.w("cmdClose")->isVisible());
        QVERIFY(r.fc.media.commands().filter("open \"/opt/tarvo/Medi2.avi\"").size() == 1);
        QCOMPARE(r.fc.media.commands().last(), "play tarvox repeat");
        r.click("cmdClose");
        QVERIFY(!movie->isVisible() && !r.w("cmdClose")->isVisible());
        QCOMPARE(r.fc.media.commands().last(), "play tarvox repeat");
        r.click("cmdPreview");
        r.click("cmdDone");
        QVERIFY(!movie->isVisible());
        const QRect preview = r.w("cmdPreview")->geometry();
        QCOMPARE(r.w("framex")->childAt(preview.center()), r.w("cmdPreview")); // not Close
        QCOMPARE(r.fc.media.commands().mid(r.fc.media.commands().size() - 2),
                 QStringList({"stop tarvox", "close tarvox"}));
    }

    // Save As looks a name up (in any case) with a sentinel past the list's end, which goes again when
    // the name is found; an empty list takes the first name. (Found and appended names: saveAs.)
    void saveAsLooksUpWithASentinel() {
        Store s(kSchemes);
        QVERIFY(findOrAppendSchemeName(s.settings, "*medium BREAK"));
        QCOMPARE(s.keys(), QStringList({"Num", "1", "2", "3", "4"}));
        QCOMPARE(s.memory.writes().back().key, "5"); // the sentinel was written first
        Store empty({});
        QVERIFY(!findOrAppendSchemeName(empty.settings, "First"));
        QCOMPARE(readSchemeList(empty.settings), QStringList{"First"});
    }

    // The first match (in any case) goes, the later ones move up and the last key is deleted; the
    // scheme's own section stays. An unlisted name changes nothing.
    void deleteShiftsTheList() {
        Store s(kSchemes + QStringList{"Evening"});
        s.settings.write("SchemeDesk", "Num", "0");
        QVERIFY(removeSchemeName(s.settings, "DESK"));
        QCOMPARE(readSchemeList(s.settings), kSchemes.mid(0, 3) + QStringList{"Evening"});
        QCOMPARE(s.keys(), QStringList({"Num", "1", "2", "3", "4"}));
        QVERIFY(s.memory.model().hasSection("SchemeDesk"));
        QVERIFY(!removeSchemeName(s.settings, "Nowhere"));
    }

    // Built-in names, names the store can hold, and stored file names (the program folder's own case
    // and its full paths: addExercises).
    void schemeAndFileNames() {
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
        QCOMPARE(storedExerciseFile("/opt/tarvo/neck.avi", "/opt/tarvo/"), "neck.avi");
        QCOMPARE(storedExerciseFile("/opt/tarvo2/a.avi", "/opt/tarvo"), "/opt/tarvo2/a.avi");
    }

    // Appending grows a full table by twenty; removing closes the gap; a move stops at either end.
    void tableEdits() {
        ExerciseTable t{{titleExercise(), {"a.avi", "A", 0, 5}, {"b.avi", "B", 1, 6}}, 2, "Desk"};
        appendExercise(t, "C", "c.bmp");
        QCOMPARE(t.ExerciseCount, 3);
        QCOMPARE(t.Exercises.size(), size_t(24));
        removeExercise(t, 1);
        QCOMPARE(t.ExerciseCount, 2);
        QCOMPARE(t.Exercises[1].File, "b.avi");
        QCOMPARE(t.Exercises[2].File, "c.bmp");
        QCOMPARE(positionAfterRemoval(1, 2), 1);
        const std::tuple<int, int, int, std::optional<int>> moves[] = {
            {0, 1, 3, {}}, {2, 3, 3, {}}, {0, 2, 3, 1}, {2, 2, 3, 3}, {0, 0, 0, {}}, {1, 2, 3, {}}};
        for (const auto& [button, p, n, target] : moves)
            QCOMPARE(reorderTarget(button, p, n), target);
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

QTEST_MAIN(TestSchemePage)
#include "tst_schemepage.moc"
