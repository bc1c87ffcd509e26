// The exercise-schemes page on fakes: moving, removing and adding exercises, Save As and Delete with
// their questions, live edits of the selected exercise, the two scheme lists, title editing and the
// preview; and its rules without the widgets (names, stored file names and the digit filter).
#include "engine/SchemeStore.h"
#include "options/DigitField.h"
#include "options/SchemeEditing.h"
#include "options/SchemePage.h"
#include "support/FakeContext.h"

#include <QtTest>
#include <QtWidgets>

using namespace tarvo;

namespace {

const QStringList kSchemes = {"*Short Break", "Desk", "*Medium Break", "*Long Break"};
using Answer = MessageBox::Answer;

// The page on a store with four schemes of three exercises each ("Medi1" of 10 seconds, "Medi2" of 20,
// ...), "*Medium break" loaded and shown, as the options dialog opens it.
struct Rig {
    Rig() {
        writeSchemeList(fc.ctx.settings, kSchemes);
        for (const QString& name : kSchemes) {
            const QString p = name.mid(name.startsWith('*') ? 1 : 0, 4);
            SaveScheme(fc.ctx.settings, name,
                       {{},
                        {p + "1.avi", p + "1", 1, 10},
                        {p + "2.avi", p + "2", 1, 20},
                        {p + "3.avi", p + "3", 1, 30}},
                       3);
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
    QStringList messages() const {
        QStringList t;
        for (const auto& shown : fc.messages.shown())
            t << shown.text;
        return t;
    }
    std::optional<QString> stored(const QString& section, const QString& key) {
        return fc.store.model().value(section, key);
    }
    void chooseScheme(QComboBox* list, const QString& name) { list->setCurrentIndex(list->findText(name)); }
    // Clicks the button and lets `inside` work the modal form it opens.
    void withForm(const char* button, std::function<void(QDialog&)> inside) {
        QMetaObject::invokeMethod(
            qApp, [inside] { inside(*qobject_cast<QDialog*>(QApplication::activeModalWidget())); },
            Qt::QueuedConnection);
        click(button);
    }
    static void answer(QDialog& form, const QString& text) {
        form.findChild<QLineEdit*>()->setText(text);
        form.findChild<QPushButton*>("cmdOK")->click();
    }

    FakeContext fc{"/opt/tarvo"};
    SchemePage page{fc.ctx};
    QComboBox cmbSchemes2;
    QPushButton cmdOK;
};

const QString kRemove = "Are you sure you want to remove this exercise from the list?";

} // namespace

class TestSchemePage : public QObject {
    Q_OBJECT

private slots:
    // Moves stop at either end; item 2 moved up becomes item 1, stays selected and takes its file
    // along. After Yes an exercise goes from list and table at once, unsaved, and the item in its place
    // (or the new last) is selected; the only one cannot go.
    void reorderAndRemove() {
        Rig r;
        r.click("cmdReorder_0");
        r.select(3);
        r.click("cmdReorder_2");
        r.select(2);
        r.click("cmdReorder_0");
        QCOMPARE(r.titles(), QStringList({"Medi2", "Medi1", "Medi3"}));
        QCOMPARE(r.selected(), 1);
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[1], (ExerciseRecord{"Medi2.avi", "Medi2", 1, 20}));

        r.select(3);
        r.click("cmdRemove"); // unanswered: No
        r.fc.messages.answerNext(Answer::Yes);
        r.click("cmdRemove");
        QCOMPARE(r.titles(), QStringList({"Medi2", "Medi1"}));
        QCOMPARE(r.selected(), 2);
        r.select(1);
        r.fc.messages.answerNext(Answer::Yes);
        r.click("cmdRemove");
        QCOMPARE(r.table().Exercises[1].File, "Medi1.avi");
        QCOMPARE(r.selected(), 1);
        QVERIFY(r.fc.store.writes().empty());
        r.click("cmdRemove");
        QCOMPARE(r.messages(),
                 QStringList({kRemove, kRemove, kRemove,
                              "Cannot delete exercise.  A scheme must contain at least one exercise."}));
        QCOMPARE(r.fc.messages.shown()[3].buttons, MessageBox::Buttons::Ok);
        QCOMPARE(r.table().ExerciseCount, 1);
    }

    // A file from the program folder is stored by its relative name, any other by its full path; a
    // new exercise lasts 30 seconds and is saved at once. A cancelled file or title adds nothing.
    void addExercises() {
        Rig r;
        r.fc.files.chooseNext("/OPT/tarvo/clips/Reach.avi");
        r.withForm("cmdAdd", [](QDialog& form) { Rig::answer(form, "Reach up"); });
        const FileDialog::OpenRequest& asked = r.fc.files.requests().front();
        QCOMPARE(asked.title, "Add an Exercise");
        QCOMPARE(asked.defaultExtension, ".avi");
        QCOMPARE(asked.filter, "Video (*.avi)|*.avi;|Pictures (*.bmp)|*.bmp|All files|*.*");
        QCOMPARE(r.table().Exercises[4], (ExerciseRecord{"clips/Reach.avi", "Reach up", 1, 30}));
        QCOMPARE(r.stored("Scheme*Medium Break", "Num"), "4");

        r.fc.files.chooseNext("/home/u/stretch.bmp");
        r.withForm("cmdAdd", [](QDialog& form) { Rig::answer(form, ""); });
        QCOMPARE(r.table().Exercises[5].File, "/home/u/stretch.bmp");
        r.fc.files.cancelNext();
        r.click("cmdAdd");
        r.fc.files.chooseNext("/home/u/other.bmp");
        r.withForm("cmdAdd", [](QDialog& form) { form.findChild<QPushButton*>("cmdCancel")->click(); });
        QCOMPARE(r.table().ExerciseCount, 5);
        QCOMPARE(r.titles().size(), 5);
    }

    // A name the store cannot hold is refused and the form stays open; an existing name in another case
    // is replaced with the table as it stands after Yes (No keeps the form open), the look-up leaving
    // no key behind; blanks save nothing; a new name is appended and made current in both lists.
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
        QCOMPARE(r.messages().mid(0, 2),
                 QStringList({"A scheme name cannot contain \\, [ or ] or a line break.",
                              "'*long BREAK' already exists.  Replace existing scheme?"}));
        QCOMPARE(r.fc.store.model().keys(kSchemesSection), QStringList({"Num", "1", "2", "3", "4"}));
        QCOMPARE(r.stored("Scheme*Long Break", "1s"), "99");
        QCOMPARE(r.table().CurrentScheme, "*long BREAK");
        QCOMPARE(r.cmbSchemes2.currentText(), "*Long Break");

        r.withForm("cmdSaveAs", [](QDialog& form) { Rig::answer(form, "   "); });
        r.withForm("cmdSaveAs", [](QDialog& form) { // by keyboard
            QTest::keyClicks(form.findChild<QLineEdit*>(), "  Evening ");
            QTest::keyClick(form.findChild<QLineEdit*>(), Qt::Key_Return);
        });
        QCOMPARE(readSchemeList(r.fc.ctx.settings), kSchemes + QStringList{"Evening"});
        QCOMPARE(r.table().CurrentScheme, "Evening");
        QCOMPARE(r.w<QComboBox>("cmbSchemes")->currentText(), "Evening");
        QCOMPARE(r.stored("SchemeEvening", "3"), "Medi3.avi");
        QVERIFY(!r.fc.store.model().hasSection("Scheme") && !r.fc.store.model().hasSection("Schemea]b"));
    }

    // A built-in scheme stays; a user scheme goes from the list after Yes, the names after it moving up
    // and its section staying; the first scheme becomes current, shown and written under "Exercises".
    void deleteSchemes() {
        Rig r;
        r.chooseScheme(r.w<QComboBox>("cmbSchemes"), "*Short Break");
        r.click("cmdDelete");
        r.chooseScheme(&r.cmbSchemes2, "Desk");
        r.click("cmdDelete"); // No
        QCOMPARE(readSchemeList(r.fc.ctx.settings), kSchemes);
        r.fc.messages.answerNext(Answer::Yes);
        r.click("cmdDelete");
        QCOMPARE(r.messages().mid(0, 2), QStringList({"You cannot delete the built-in schemes.  The built-in "
                                                      "schemes are indicated with a leading asterisk.",
                                                      "Are you sure you want to delete this scheme?"}));
        QCOMPARE(readSchemeList(r.fc.ctx.settings),
                 QStringList({"*Short Break", "*Medium Break", "*Long Break"}));
        QCOMPARE(r.fc.store.model().keys(kSchemesSection), QStringList({"Num", "1", "2", "3"}));
        QVERIFY(r.fc.store.model().hasSection("SchemeDesk"));
        QCOMPARE(r.table().CurrentScheme, "*Short Break");
        QCOMPARE(r.stored("Exercises", "Scheme"), "*Short Break");
        QCOMPARE(r.cmbSchemes2.currentIndex(), 0);
        QCOMPARE(r.titles(), QStringList({"Shor1", "Shor2", "Shor3"}));
    }

    // The frame's edits show in the list at once and reach the table through LtoExercises; a double
    // click toggles done; the arrow keys work the spinner; an emptied length is 0; the field shows and
    // keeps what the store holds, past what can be typed. Choosing in either scheme list chooses in
    // both, saving the scheme that is left with the list's edits; the current scheme is found in the
    // lists without regard to case.
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

        QTest::keyClick(seconds, Qt::Key_Up);
        QCOMPARE(r.l()->topLevelItem(0)->text(1), "46 seconds");
        r.select(2);
        QCOMPARE(seconds->text(), "20");
        seconds->clear();
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[2].Seconds, 0);

        r.table().Exercises[1].Seconds = 1200;
        r.table().Exercises[3].Seconds = -5;
        r.page.LoadL();
        r.page.DetailIt();
        QCOMPARE(seconds->text(), "1200");
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[1].Seconds, 1200);
        QCOMPARE(r.table().Exercises[3].Seconds, -5);

        QCOMPARE(r.cmbSchemes2.currentText(), "*Medium Break"); // "*Medium break" loaded
        r.chooseScheme(r.w<QComboBox>("cmbSchemes"), "Desk");
        QCOMPARE(r.cmbSchemes2.currentText(), "Desk");
        QCOMPARE(r.titles(), QStringList({"Desk1", "Desk2", "Desk3"}));
        QCOMPARE(r.stored("Scheme*Medium Break", "3s"), "-5");
        r.chooseScheme(&r.cmbSchemes2, "*Long Break");
        QCOMPARE(r.w<QComboBox>("cmbSchemes")->currentText(), "*Long Break");
        QCOMPARE(r.table().CurrentScheme, "*Long Break");
    }

    // On screen: the preview surface covers the list with Done at its lower right; while a title is
    // edited in the list, Enter belongs to the edit, not to the dialog's OK; Preview shows and plays
    // the exercise, Close hides it with the video still open, Done closes the video and leaves Preview
    // to be pressed.
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

        r.l()->editItem(r.l()->topLevelItem(0), 0);
        auto* editor = r.l()->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor && !r.cmdOK.isDefault());
        editor->setText("Neck & back");
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(r.cmdOK.isDefault());
        r.page.LtoExercises();
        QCOMPARE(r.table().Exercises[1].Caption, "Neck & back");
        QCOMPARE(r.w<QGroupBox>("framex")->title(), "Neck && back settings");

        r.select(2);
        r.click("cmdPreview");
        QVERIFY(movie->isVisible() && r.w("cmdClose")->isVisible());
        const QStringList& sent = r.fc.media.commands();
        QVERIFY(sent.filter("open \"/opt/tarvo/Medi2.avi\"").size() == 1);
        r.click("cmdClose");
        QVERIFY(!movie->isVisible() && !r.w("cmdClose")->isVisible());
        QCOMPARE(sent.last(), "play tarvox repeat");
        r.click("cmdPreview");
        r.click("cmdDone");
        QVERIFY(!movie->isVisible());
        QCOMPARE(sent.mid(sent.size() - 2), QStringList({"stop tarvox", "close tarvox"}));
        const QRect preview = r.w("cmdPreview")->geometry();
        QCOMPARE(r.w("framex")->childAt(preview.center()), r.w("cmdPreview")); // not Close
    }

    // Built-in names (with regard to case), names the store can hold, a file beside the program folder;
    // a full table grows by twenty; the digit filter: Backspace passes, other non-digits never; a
    // digit over a selection or into an empty field passes unchecked, else only while the number
    // stays within 1 … 999.
    void rules() {
        QVERIFY(isBuiltInScheme("*Long Break") && !isBuiltInScheme("*long break") &&
                !isBuiltInScheme("*Long"));
        for (const char* name : {"a\\b", "[a", "a]", "a\nb", "a\r", "a\tb", "x\u2028"})
            QVERIFY2(!isStorableSchemeName(name), name);
        QVERIFY(isStorableSchemeName("*Ünïcode 2"));
        QCOMPARE(storedExerciseFile("/opt/tarvo2/a.avi", "/opt/tarvo"), "/opt/tarvo2/a.avi");
        ExerciseTable full{{titleExercise()}, 0, "Desk"};
        appendExercise(full, "C", "c.bmp");
        QCOMPARE(full.Exercises.size(), size_t(22));

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
