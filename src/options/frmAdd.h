#pragma once

#include <QDialog>
#include <QString>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmAdd;
}
QT_END_NAMESPACE

namespace tarvo {

struct AppContext;

// Asks for the title of an exercise that is being added from the chosen file. OK appends the
// exercise to the current scheme and saves the scheme at once; Cancel adds nothing. It comes up over
// the window it is opened from (the options dialog).
class frmAdd : public QDialog {
    Q_OBJECT

public:
    frmAdd(AppContext& ctx, QString chosenFile, QWidget* parent = nullptr);
    ~frmAdd() override;

    // The name the exercise will be stored with.
    const QString& fileName() const { return fileName_; }

private slots:
    void cmdOK_Click();
    void cmdCancel_Click();

private:
    void Form_Load();

    std::unique_ptr<Ui::frmAdd> ui;
    AppContext& ctx_;
    QString fileName_;
};

} // namespace tarvo
