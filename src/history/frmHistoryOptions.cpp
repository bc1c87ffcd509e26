#include "history/frmHistoryOptions.h"

#include "core/MessageBox.h"
#include "history/HistoryLog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarvo {

frmHistoryOptions::frmHistoryOptions(HistoryLog& log, MessageBox& messages, QWidget* parent)
    : QDialog(parent)
    , log_(log)
    , messages_(messages) {
    setObjectName(QStringLiteral("frmHistoryOptions"));
    setWindowTitle(tr("Break History"));
    auto* layout = new QVBoxLayout(this);
    auto* record = new QCheckBox(tr("&Keep a history of my breaks"), this);
    record->setObjectName(QStringLiteral("chkRecord"));
    record->setChecked(log.recording());
    connect(record, &QCheckBox::toggled, this, &frmHistoryOptions::chkRecord_Click);
    layout->addWidget(record);
    auto* where = new QLabel(tr("It stays on this computer, in %1, and the status window shows it.")
                                 .arg(QDir::toNativeSeparators(log.path())),
                             this);
    where->setWordWrap(true);
    layout->addWidget(where);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton* clear = buttons->addButton(tr("&Clear History..."), QDialogButtonBox::ActionRole);
    clear->setObjectName(QStringLiteral("cmdClear"));
    connect(clear, &QPushButton::clicked, this, &frmHistoryOptions::cmdClear_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void frmHistoryOptions::chkRecord_Click(bool on) {
    log_.setRecording(on);
}

void frmHistoryOptions::cmdClear_Click() {
    const QString title = windowTitle();
    if (messages_.show(tr("Clear the whole break history? This cannot be undone."), title,
                       MessageBox::Buttons::YesNo, MessageBox::Icon::Question) != MessageBox::Answer::Yes)
        return;
    if (!log_.clear())
        messages_.show(log_.problem(), title, MessageBox::Buttons::Ok, MessageBox::Icon::Critical);
}

} // namespace tarvo
