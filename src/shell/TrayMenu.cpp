#include "shell/TrayMenu.h"

#include "core/RuntimeError.h"

#include <QAction>
#include <QMenu>

namespace tarvo {

TrayMenu::TrayMenu(std::function<QStringList()> schemeNames, TrayMenuActions actions, QObject* parent)
    : QObject(parent)
    , schemeNames_(std::move(schemeNames))
    , actions_(std::move(actions))
    , mnuPopup_(std::make_unique<QMenu>()) {
    mnuPopup_->setObjectName(QStringLiteral("mnuPopup"));
    mnuPopup_->setTitle(QStringLiteral("Popup"));

    if (actions_.options) {
        QAction* options =
            addItem(QStringLiteral("mnuPopupOptions"), tr("&Options..."), &TrayMenu::mnuPopupOptions_Click);
        QFont bold = options->font();
        bold.setBold(true);
        options->setFont(bold);
        mnuPopup_->setDefaultAction(options);
    }
    addItem(QStringLiteral("mnuPopupStatus"), tr("&Status..."), &TrayMenu::mnuPopupStatus_Click);
    addItem(QStringLiteral("mnuPopupAbout"), tr("&About..."), &TrayMenu::mnuPopupAbout_Click);
    addSeparator(QStringLiteral("mnuPopupDash1"));
    addItem(QStringLiteral("mnuDemoMicropause"), tr("&Micropause Now!"), &TrayMenu::mnuDemoMicropause_Click);
    if (actions_.exerciseNow)
        addItem(QStringLiteral("mnuExercise"), tr("&Exercise Now!"), &TrayMenu::mnuExercise_Click);
    addSeparator(QStringLiteral("mnuPopupDash3"));
    mnuPopupDash2_ = addSeparator(QStringLiteral("mnuPopupDash2"));
    mnuPopup_->insertAction(mnuPopupDash2_, makeSchemeItem(1));
    mnuX_.front()->setText(tr("Scheme"));
    addItem(QStringLiteral("mnuShutdownTarvo"), tr("Sh&utdown Tarvo"), &TrayMenu::mnuShutdownTarvo_Click);
}

TrayMenu::~TrayMenu() = default;

QAction* TrayMenu::addItem(const QString& name, const QString& caption, void (TrayMenu::*handler)()) {
    QAction* item = mnuPopup_->addAction(caption);
    item->setObjectName(name);
    connect(item, &QAction::triggered, this, handler);
    return item;
}

QAction* TrayMenu::addSeparator(const QString& name) {
    QAction* separator = mnuPopup_->addSeparator();
    separator->setObjectName(name);
    return separator;
}

QAction* TrayMenu::makeSchemeItem(int index) {
    auto* item = new QAction(mnuPopup_.get());
    item->setObjectName(QStringLiteral("mnuX_%1").arg(index));
    connect(item, &QAction::triggered, this, [this, index] { mnuX_Click(index); });
    mnuX_.push_back(item);
    return item;
}

void TrayMenu::LoadMnuX() {
    while (mnuX_.size() > 1) {
        delete mnuX_.back();
        mnuX_.pop_back();
    }
    QStringList names;
    try {
        names = schemeNames_();
    } catch (const RuntimeError&) {
        return;
    }
    for (qsizetype i = 0; i < names.size(); ++i) {
        const int index = static_cast<int>(i) + 1;
        if (index > static_cast<int>(mnuX_.size()))
            mnuPopup_->insertAction(mnuPopupDash2_, makeSchemeItem(index));
        QAction* item = mnuX_[static_cast<std::size_t>(i)];
        item->setText(names[i]);
        item->setVisible(true);
    }
}

void TrayMenu::mnuPopupOptions_Click() {
    actions_.options();
}

void TrayMenu::mnuPopupStatus_Click() {
    if (actions_.status)
        actions_.status();
}

void TrayMenu::mnuPopupAbout_Click() {
    if (actions_.about)
        actions_.about();
}

void TrayMenu::mnuDemoMicropause_Click() {
    if (actions_.micropauseNow)
        actions_.micropauseNow();
}

void TrayMenu::mnuExercise_Click() {
    actions_.exerciseNow();
}

void TrayMenu::mnuX_Click(int index) {
    if (actions_.scheme)
        actions_.scheme(index, mnuX_[static_cast<std::size_t>(index - 1)]->text());
}

void TrayMenu::mnuShutdownTarvo_Click() {
    if (actions_.shutdown)
        actions_.shutdown();
}

} // namespace tarvo
