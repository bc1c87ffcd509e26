#include "options/frmPresence.h"

#include "engine/AppContext.h"
#include "options/PresenceOptions.h"
#include "settings/Options.h"
#include "ui_frmPresence.h"

namespace tarvo {

frmPresence::frmPresence(AppContext& ctx, PresenceHold& hold, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmPresence>())
    , ctx_(ctx)
    , hold_(hold) {
    ui->setupUi(this);
    const OptionRange limit = *option("HoldLimit").spinner;
    ui->spnHoldLimit->setRange(limit.min, limit.max);
    const PresenceFields f = presenceFromRecord(ctx_.record);
    ui->chkLockPause->setChecked(f.chkLockPause);
    ui->chkFullScreen->setChecked(f.chkFullScreen);
    ui->chkDoNotDisturb->setChecked(f.chkDoNotDisturb);
    ui->chkInhibited->setChecked(f.chkInhibited);
    ui->spnHoldLimit->setValue(f.spnHoldLimit);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmPresence::cmdOK_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmPresence::~frmPresence() = default;

void frmPresence::cmdOK_Click() {
    applyPresence({ui->chkLockPause->isChecked(), ui->chkFullScreen->isChecked(),
                   ui->chkDoNotDisturb->isChecked(), ui->chkInhibited->isChecked(),
                   ui->spnHoldLimit->value()},
                  ctx_, hold_);
    accept();
}

} // namespace tarvo
