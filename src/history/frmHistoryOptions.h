#pragma once

#include <QDialog>

class QCheckBox;

namespace tarvo {

class HistoryLog;
class MessageBox;

// "Break History", from the options dialog's "History...": whether the history is kept, where, and
// "Clear History...", which asks first. A choice takes effect at once, apart from the options' Apply:
// it is about what the program keeps, not how it behaves.
class frmHistoryOptions : public QDialog {
    Q_OBJECT

public:
    frmHistoryOptions(HistoryLog& log, MessageBox& messages, QWidget* parent = nullptr);

    void chkRecord_Click(bool on);
    void cmdClear_Click();

private:
    HistoryLog& log_;
    MessageBox& messages_;
};

} // namespace tarvo
