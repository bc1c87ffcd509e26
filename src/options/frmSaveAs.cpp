#include "options/frmSaveAs.h"

#include "core/MessageBox.h"
#include "core/ProgramInfo.h"
#include "engine/AppContext.h"
#include "engine/SchemeStore.h"
#include "options/SchemeEditing.h"
#include "ui_frmSaveAs.h"

#include <QScreen>

namespace tarvo {

frmSaveAs::frmSaveAs(AppContext& ctx, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmSaveAs>())
    , ctx_(ctx) {
    ui->setupUi(this);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmSaveAs::cmdOK_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmSaveAs::cmdCancel_Click);
    Form_Load();
}

frmSaveAs::~frmSaveAs() = default;

void frmSaveAs::Form_Load() {
    adjustSize();
    const QRect screen = this->screen()->geometry();
    move(screen.x() + (screen.width() - width()) / 2, screen.y() + (screen.height() - height()) / 2);
}

void frmSaveAs::cmdOK_Click() {
    const QString name = typedSchemeName(ui->txtScheme->text());
    if (name.isEmpty()) {
        accept();
        return;
    }
    const QString title = QLatin1String(kProgramTitle);
    if (!isStorableSchemeName(name)) {
        ctx_.messages.show(QStringLiteral("A scheme name cannot contain \\, [ or ] or a line break."), title);
        ui->txtScheme->setFocus();
        return;
    }
    if (findOrAppendSchemeName(ctx_.settings, name) &&
        ctx_.messages.show(QStringLiteral("'%1' already exists.  Replace existing scheme?").arg(name), title,
                           MessageBox::Buttons::YesNo) != MessageBox::Answer::Yes) {
        ui->txtScheme->setFocus();
        return;
    }
    ctx_.exercises.CurrentScheme = name;
    SaveScheme(ctx_.settings, name, ctx_.exercises.Exercises, ctx_.exercises.ExerciseCount);
    accept();
}

void frmSaveAs::cmdCancel_Click() {
    reject();
}

} // namespace tarvo
