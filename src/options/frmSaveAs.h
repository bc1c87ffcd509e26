#pragma once

#include <QDialog>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmSaveAs;
}
QT_END_NAMESPACE

namespace tarvo {

struct AppContext;

// Asks for the name to save the current exercises under. OK with a new name adds it to the list of
// schemes; with a listed one (in any case) it asks before replacing that scheme, built-in ones
// included; either way the name becomes the current scheme and the exercise table is saved under it.
// A name of blanks only saves nothing; a name the store cannot hold is refused and another asked for.
class frmSaveAs : public QDialog {
    Q_OBJECT

public:
    explicit frmSaveAs(AppContext& ctx, QWidget* parent = nullptr);
    ~frmSaveAs() override;

private slots:
    void cmdOK_Click();
    void cmdCancel_Click();

private:
    void Form_Load();

    std::unique_ptr<Ui::frmSaveAs> ui;
    AppContext& ctx_;
};

} // namespace tarvo
