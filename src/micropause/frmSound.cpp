#include "micropause/frmSound.h"

#include "core/FileDialog.h"
#include "settings/SettingsRecord.h"
#include "ui_frmSound.h"

#include <QScreen>

namespace tarvo {

frmSound::frmSound(SettingsRecord& settings, std::int32_t mode, FileDialog& fileDialog, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmSound>())
    , settings_(settings)
    , mode_(mode)
    , fileDialog_(fileDialog) {
    ui->setupUi(this);
    optType = {ui->optType_0, ui->optType_1};
    connect(ui->cmdSound, &QPushButton::clicked, this, &frmSound::cmdSound_Click);
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmSound::cmdOK_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmSound::cmdCancel_Click);
    Form_Load();
}

frmSound::~frmSound() = default;

QString frmSound::filenameOnly(const QString& path) {
    return path.mid(path.lastIndexOf(u'/') + 1);
}

void frmSound::Form_Load() {
    if (const QString* field = designatedPath())
        path_ = *field;
    if (!path_.isEmpty())
        showFile();
    else
        optType[0]->setChecked(true);
    // Centred once its captions are in: the form's width follows the file name.
    adjustSize();
    const QRect screen = this->screen()->geometry();
    move(screen.x() + (screen.width() - width()) / 2, screen.y() + (screen.height() - height()) / 2);
}

QString* frmSound::designatedPath() const {
    switch (mode_) {
    case 0:
        return &settings_.WarningSound;
    case 1:
        return &settings_.WarningSoundX;
    case 2:
        return &settings_.WarningSoundPre;
    default:
        return nullptr;
    }
}

void frmSound::showFile() {
    optType[1]->setChecked(true); // the pair is exclusive: this clears optType_0
    optType[1]->setText(QStringLiteral("Sound card (") + filenameOnly(path_) + u')');
}

void frmSound::cmdSound_Click() {
    const std::optional<QString> chosen =
        fileDialog_.getOpenFileName({.title = QStringLiteral("Select warning sound"),
                                     .defaultExtension = QStringLiteral(".wav"),
                                     .filter = QStringLiteral("Audio|*.wav|All files|*.*"),
                                     .fileMustExist = true},
                                    this);
    if (!chosen)
        return;
    path_ = *chosen;
    showFile();
}

void frmSound::cmdOK_Click() {
    if (QString* field = designatedPath())
        *field = optType[0]->isChecked() ? QString() : path_;
    accept();
}

void frmSound::cmdCancel_Click() {
    reject();
}

} // namespace tarvo
