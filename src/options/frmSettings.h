#pragma once

#include "options/OptionFields.h"

#include <QDialog>

#include <memory>

QT_BEGIN_NAMESPACE
class QLineEdit;
namespace Ui {
class frmSettings;
}
QT_END_NAMESPACE

namespace tarvo {

struct AppContext;
class BreakEngine;
class SchemePage;
class Timer;

// "Tarvo Options": every option on three tabs; the third is the scheme editor (SchemePage). The
// controls are the working copy: LoadMeUp fills them from the record, Apply copies them back through
// applyOptions. Closing only hides the dialog, and the scheme list keeps its edits between openings.
//
// The program creates the dialog on its first opening rather than at start-up: nothing a user can
// see differs, and an idle program that is never configured does not carry the forms' memory.
class frmSettings : public QDialog, private ApplyPort {
    Q_OBJECT

public:
    // What the dialog asks of the forms beside it: the break screen's message, and the sound choice
    // for one warning (0 the micropause warning, 1 the exercise warning, 2 the pre-warning).
    class Neighbours {
    public:
        virtual void warningChanged(const QString& warning) = 0;
        virtual void chooseSound(int index, QWidget* parent) = 0;
        // "History...": whether the break history is kept, and clearing it (nothing where none is kept).
        virtual void showHistoryOptions(QWidget* parent) { (void)parent; }

    protected:
        ~Neighbours() = default;
    };

    frmSettings(AppContext& ctx, BreakEngine& engine, Neighbours& neighbours, QWidget* parent = nullptr);
    ~frmSettings() override;

    // Opens the dialog: a running micropause is cut short first, then every control is filled from the
    // record and the dialog is shown, centred.
    void LoadMeUp();
    // The tray's scheme choice, so that the editor's list keeps showing the scheme that is loaded.
    void chooseScheme(const QString& name);

    SchemePage& schemePage() { return *schemePage_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void reject() override;

private:
    void cutMicropauseShort();
    void showFields(const OptionFields& fields);
    OptionFields readFields() const;
    void ts_Click(int index);
    void cmdApply_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

    // ApplyPort
    void warningChanged(const QString& warning) override;
    void saveScheme() override;

    std::unique_ptr<Ui::frmSettings> ui;
    AppContext& ctx_;
    BreakEngine& engine_;
    Neighbours& neighbours_;
    SchemePage* schemePage_ = nullptr;
    class HideAfterOk;
    std::unique_ptr<HideAfterOk> hideListener_;
    std::unique_ptr<Timer> hideAfterOk_;
};

} // namespace tarvo
