#pragma once

#include <QObject>

#include <memory>
#include <vector>

class QAction;
class QMenu;

namespace tarvo {

class SettingsStore;
class TrayActions;

// The tray's popup menu mnuPopup, never shown in a menu bar: Options (default, bold), Status, About,
// a separator, Micropause Now!, Exercise Now!, a separator, one item per exercise scheme (mnuX_1,
// mnuX_2, ...), a separator and Shutdown Tarvo. The QActions carry the item names as object names;
// each item's handler hands over to the program's TrayActions.
class TrayMenu : public QObject {
    Q_OBJECT

public:
    TrayMenu(SettingsStore& settings, TrayActions& actions, QObject* parent = nullptr);
    ~TrayMenu() override;

    QMenu& mnuPopup() { return *mnuPopup_; }

    // Rebuilds the scheme items from the store; run before every popup. Items from mnuX_2 on are
    // removed, then one item per stored scheme is (re)made with the scheme's name as its caption. The
    // first item, mnuX_1, is the designed one and is never removed: with no schemes stored it keeps the
    // caption it has ("Scheme" until a list has been loaded). An unreadable list counts as no
    // schemes: a menu must come up whatever the store holds.
    void LoadMnuX();

private slots:
    void mnuPopupOptions_Click();
    void mnuPopupStatus_Click();
    void mnuPopupAbout_Click();
    void mnuDemoMicropause_Click();
    void mnuExercise_Click();
    void mnuX_Click(int index);
    void mnuShutdownTarvo_Click();

private:
    QAction* addItem(const QString& name, const QString& caption, void (TrayMenu::*handler)());
    QAction* addSeparator(const QString& name);
    QAction* makeSchemeItem(int index);

    SettingsStore& settings_;
    TrayActions& actions_;
    std::unique_ptr<QMenu> mnuPopup_;
    // mnuX_1, mnuX_2, ...: element k at index k - 1.
    std::vector<QAction*> mnuX_;
    QAction* mnuPopupDash2_ = nullptr;
};

} // namespace tarvo
