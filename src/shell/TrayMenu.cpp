#include "shell/TrayMenu.h"

#include "core/RuntimeError.h"
#include "engine/SchemeStore.h"
#include "shell/TrayActions.h"

#include <QAction>
#include <QMenu>

namespace tarvo {

TrayMenu::TrayMenu(SettingsStore& settings, TrayActions& actions, QObject* parent)
    : QObject(parent)
    , settings_(settings)
    , actions_(actions)
    , mnuPopup_(std::make_unique<QMenu>()) {
    mnuPopup_->setObjectName(QStringLiteral("mnuPopup"));
    mnuPopup_->setTitle(QStringLiteral("Popup"));

    QAction* options =
        addItem(QStringLiteral("mnuPopupOptions"), tr("&Options..."), &TrayMenu::mnuPopupOptions_Click);
    QFont bold = options->font();
    bold.setBold(true);
    options->setFont(bold);
    mnuPopup_->setDefaultAction(options);
    addItem(QStringLiteral("mnuPopupStatus"), tr("&Status..."), &TrayMenu::mnuPopupStatus_Click);
    addItem(QStringLiteral("mnuPopupAbout"), tr("&About..."), &TrayMenu::mnuPopupAbout_Click);
    addSeparator(QStringLiteral("mnuPopupDash1"));
    addItem(QStringLiteral("mnuDemoMicropause"), tr("&Micropause Now!"), &TrayMenu::mnuDemoMicropause_Click);
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
        names = readSchemeList(settings_);
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
    actions_.LoadMeUp();
}

void TrayMenu::mnuPopupStatus_Click() {
    actions_.showStatus();
}

void TrayMenu::mnuPopupAbout_Click() {
    actions_.showAbout();
}

void TrayMenu::mnuDemoMicropause_Click() {
    actions_.micropauseNow();
}

void TrayMenu::mnuExercise_Click() {
    actions_.exerciseNow();
}

void TrayMenu::mnuX_Click(int index) {
    actions_.useScheme(mnuX_[static_cast<std::size_t>(index - 1)]->text());
}

void TrayMenu::mnuShutdownTarvo_Click() {
    actions_.shutdown();
}

} // namespace tarvo
