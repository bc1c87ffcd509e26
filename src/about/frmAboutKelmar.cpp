#include "about/frmAboutKelmar.h"

#include "core/Version.h"
#include "shell/ProgramIcon.h"
#include "ui_frmAboutKelmar.h"

namespace tarvo {

namespace {

constexpr int kIconSize = 64;

} // namespace

frmAboutKelmar::frmAboutKelmar(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmAboutKelmar>()) {
    ui->setupUi(this);
    const QIcon icon = programIcon();
    setWindowIcon(icon);
    ui->imgIcon->setPixmap(icon.pixmap(kIconSize, kIconSize));
    QFont title = ui->lblTitle->font();
    title.setBold(true);
    title.setPointSizeF(title.pointSizeF() * 1.4);
    ui->lblTitle->setFont(title);
    ui->lblVersion->setText(versionText());
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmAboutKelmar::cmdOK_Click);
}

frmAboutKelmar::~frmAboutKelmar() = default;

QString frmAboutKelmar::versionText() {
    return QStringLiteral("%1.%2.%3").arg(kVersionMajor).arg(kVersionMinor).arg(kVersionRevision);
}

void frmAboutKelmar::cmdOK_Click() {
    accept();
}

} // namespace tarvo
