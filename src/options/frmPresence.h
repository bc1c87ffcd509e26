#pragma once

#include <QDialog>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class frmPresence;
}
QT_END_NAMESPACE

namespace tarvo {

struct AppContext;
class PresenceHold;

// "Presence": whether a locked screen is a pause, which conditions hold breaks back while the person is
// busy, and for how long at most. Opened from the "Micropauses" page of the options dialog by its
// "&Presence..." button rather than as a fourth tab, so that the dialog keeps its three pages (Ctrl+Tab
// goes round three) and every access key its letter. OK writes the options at once, whatever the
// options dialog's own Apply; Cancel changes nothing.
class frmPresence : public QDialog {
    Q_OBJECT

public:
    frmPresence(AppContext& ctx, PresenceHold& hold, QWidget* parent);
    ~frmPresence() override;

private:
    void cmdOK_Click();

    std::unique_ptr<Ui::frmPresence> ui;
    AppContext& ctx_;
    PresenceHold& hold_;
};

} // namespace tarvo
