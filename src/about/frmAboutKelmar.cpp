#include "about/frmAboutKelmar.h"

#include "core/ProgramInfo.h"
#include "ui_frmAboutKelmar.h"

namespace tarvo {

namespace {

constexpr int kIconSize = 64;

} // namespace

frmAboutKelmar::frmAboutKelmar(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmAboutKelmar>()) {
    ui->setupUi(this);
    setWindowTitle(QStringLiteral("About ") + QLatin1String(kProgramTitle));
    ui->lblTitle->setText(QLatin1String(kProgramTitle));
    // The program's own icon, as start-up gave it to every window of the application.
    ui->imgIcon->setPixmap(windowIcon().pixmap(kIconSize, kIconSize));
    QFont title = ui->lblTitle->font();
    title.setBold(true);
    title.setPointSizeF(title.pointSizeF() * 1.4);
    ui->lblTitle->setFont(title);
    ui->lblVersion->setText(QLatin1String(kVersionText));
    connect(ui->cmdOK, &QPushButton::clicked, this, &frmAboutKelmar::cmdOK_Click);
}

frmAboutKelmar::~frmAboutKelmar() = default;

void frmAboutKelmar::cmdOK_Click() {
    accept();
}

} // namespace tarvo
