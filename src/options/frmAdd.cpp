#include "options/frmAdd.h"

#include "engine/AppContext.h"
#include "engine/SchemeStore.h"
#include "options/SchemeEditing.h"
#include "ui_frmAdd.h"

namespace tarvo {

frmAdd::frmAdd(AppContext& ctx, QString chosenFile, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmAdd>())
    , ctx_(ctx)
    , fileName_(std::move(chosenFile)) {
    ui->setupUi(this);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmAdd::cmdOK_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmAdd::cmdCancel_Click);
    Form_Load();
}

frmAdd::~frmAdd() = default;

void frmAdd::Form_Load() {
    fileName_ = storedExerciseFile(fileName_, ctx_.programFolder);
    adjustSize();
    // Over the middle of the window it was opened from, so that it is seen where the user looks.
    if (const QWidget* owner = parentWidget() ? parentWidget()->window() : nullptr) {
        const QRect over = owner->frameGeometry();
        move(over.x() + (over.width() - frameGeometry().width()) / 2,
             over.y() + (over.height() - frameGeometry().height()) / 2);
    }
}

void frmAdd::cmdOK_Click() {
    // The title as typed; an empty one is allowed.
    appendExercise(ctx_.exercises, ui->txtDisplayName->text(), fileName_);
    SaveScheme(ctx_.settings, ctx_.exercises.CurrentScheme, ctx_.exercises.Exercises,
               ctx_.exercises.ExerciseCount);
    accept();
}

void frmAdd::cmdCancel_Click() {
    reject();
}

} // namespace tarvo
