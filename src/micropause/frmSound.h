#pragma once

#include <QDialog>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>

QT_BEGIN_NAMESPACE
class QRadioButton;
namespace Ui {
class frmSound;
}
QT_END_NAMESPACE

namespace tarvo {

class FileDialog;
struct SettingsRecord;

// "Sound warning": the choice between beeps and a sound file for one warning at a time. The options
// dialog opens it modally. OK stores the choice in the record only; the options dialog's Apply
// writes it to the registry.
class frmSound : public QDialog {
    Q_OBJECT

public:
    // Which warning the form edits: 0 the micropause warning (WarningSound), 1 the exercise warning
    // (WarningSoundX), 2 the pre-warning (WarningSoundPre). Any other mode edits nothing: the form
    // shows beeps and OK stores nothing.
    frmSound(SettingsRecord& settings, std::int32_t mode, FileDialog& fileDialog, QWidget* parent = nullptr);
    ~frmSound() override;

    // The text after the path's last "/", or the whole path when it has none.
    static QString filenameOnly(const QString& path);

private slots:
    void cmdSound_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

private:
    void Form_Load();
    QString* designatedPath() const;
    void showFile();

    std::unique_ptr<Ui::frmSound> ui;
    std::array<QRadioButton*, 2> optType{};
    SettingsRecord& settings_;
    std::int32_t mode_;
    FileDialog& fileDialog_;
    // The file shown, kept until the form closes even while "Standard computer beeps" is selected,
    // so that going back to the file before OK still has it.
    QString path_;
};

} // namespace tarvo
