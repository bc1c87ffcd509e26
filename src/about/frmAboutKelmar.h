#pragma once

#include <QDialog>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmAboutKelmar;
}
QT_END_NAMESPACE

namespace tarvo {

// The About box: the program's name, icon (the application's window icon) and version
// (major.minor.revision), what it is for and its licence. The tray menu's About item shows it without
// blocking anything; OK (or Esc) closes it.
class frmAboutKelmar : public QDialog {
    Q_OBJECT

public:
    explicit frmAboutKelmar(QWidget* parent = nullptr);
    ~frmAboutKelmar() override;

private slots:
    void cmdOK_Click();

private:
    std::unique_ptr<Ui::frmAboutKelmar> ui;
};

} // namespace tarvo
