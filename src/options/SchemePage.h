#pragma once

#include "controls/ExerciseMedia.h"

#include <QIcon>
#include <QPointer>
#include <QWidget>

#include <array>
#include <memory>

QT_BEGIN_NAMESPACE
class QAbstractButton;
class QComboBox;
class QPushButton;
class QTreeWidgetItem;
namespace Ui {
class SchemePage;
}
QT_END_NAMESPACE

namespace tarvo {

struct AppContext;
class TitleEditDelegate;

// "Exercise Schemes", the options dialog's third page: which scheme is current, its exercises in
// order (title, length, done or not) and the details of the selected one, adding, removing and moving
// exercises, saving the list under a name, deleting a scheme and previewing an exercise.
//
// List item k shows exercise k of the shared exercise table. Edits of the done flag, the length and
// the title stay in the list until LtoExercises copies them into the table: the options dialog's Apply
// does, and so do choosing another scheme and adding an exercise, which also save the scheme. Removals
// and moves change the table at once.
class SchemePage : public QWidget {
    Q_OBJECT

public:
    explicit SchemePage(AppContext& ctx, QWidget* parent = nullptr);
    ~SchemePage() override;

    // The scheme list of the exercise-break page, which always shows the same scheme as cmbSchemes:
    // choosing in either chooses in both.
    void attachSchemeList2(QComboBox* cmbSchemes2);
    // The dialog's OK button, which gives up being the default button while an exercise's title is
    // being edited in the list, so that Enter ends the edit rather than the dialog.
    void setDialogDefaultButton(QPushButton* cmdOK);

    // Fills cmbSchemes and the attached list with the stored schemes, showing the current one.
    void LoadSchemes();
    // Fills a scheme list with the names and selects the current one (found without regard to case).
    static void LoadSchemesInto(QComboBox& list, const QStringList& names, const QString& current);
    // Table → list: one item per exercise, the first one selected.
    void LoadL();
    // The selected exercise → the detail frame.
    void DetailIt();
    // List → table: done flag, seconds and title of every item. File names stay where they are.
    void LtoExercises();
    bool listIsEmpty() const;

    // Lays the preview surface over the exercise list, hidden, with cmdDone at its lower right. (The
    // page keeps them there whenever the list moves or changes size.)
    void layOut();

    // Another scheme chosen elsewhere (the tray's scheme list), taken as a choice in cmbSchemes: the
    // scheme left is saved with the list's edits, and list and table show the chosen one.
    void chooseScheme(const QString& name);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void cmbSchemes_Click();
    void cmbSchemes2_Click();
    void cmdAdd_Click();
    void cmdRemove_Click();
    void cmdReorder_Click(int Index);
    void cmdSaveAs_Click();
    void cmdDelete_Click();
    void cmdPreview_Click();
    void cmdDone_Click();
    void cmdClose_Click();
    void chkDoit_Click();
    void txtXsecs_Change();
    void l_ItemClick();
    void l_DblClick(QTreeWidgetItem* item);

private:
    // Item k of the list (1 … count), and the position of the selected one (0 for none).
    QTreeWidgetItem* listItem(int k) const;
    int selectedPosition() const;
    QTreeWidgetItem* newItem(const QString& title, int smallIcon, const QString& length) const;
    // 1 not done, 2 done.
    static int smallIcon(const QTreeWidgetItem& item);
    void setSmallIcon(QTreeWidgetItem& item, int icon) const;
    void selectItem(QTreeWidgetItem* item);
    // Both scheme lists at one position, without either running its choice.
    void showSchemeAt(int index);
    // Saves the scheme being left, with the list's edits, then loads and shows the named one.
    void switchScheme(const QString& name);
    void placeOverlays();
    void titleEditing(bool started);

    std::unique_ptr<Ui::SchemePage> ui;
    AppContext& ctx_;
    ExerciseMedia media_;
    std::array<QIcon, 2> icons_;                  // not done, done
    std::array<QAbstractButton*, 3> cmdReorder{}; // there is no element 1
    TitleEditDelegate* titleDelegate_ = nullptr;
    // Controls of the dialog around the page, which may go before it.
    QPointer<QComboBox> cmbSchemes2_;
    QPointer<QPushButton> cmdOK_;
    bool fillingSchemes_ = false;
    bool rebuildingList_ = false;
};

} // namespace tarvo
