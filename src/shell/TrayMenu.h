#pragma once

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QMenu;

namespace tarvo {

// What the items of the tray menu do; start-up fills these in. An item whose action is not given is
// not in the menu at all, which is how Options and Exercise Now! wait for the options dialog and the
// exercise break: once their action is wired, the item takes its place in the menu.
struct TrayMenuActions {
    std::function<void()> options;                              // "&Options...", the default item
    std::function<void()> status;                               // "&Status..."
    std::function<void()> about;                                // "&About..."
    std::function<void()> micropauseNow;                        // "&Micropause Now!"
    std::function<void()> exerciseNow;                          // "&Exercise Now!"
    std::function<void(int index, const QString& name)> scheme; // an item of the scheme list
    std::function<void()> shutdown;                             // "Sh&utdown Tarvo"
};

// The tray's popup menu mnuPopup, never shown in a menu bar: Options (default, bold), Status, About,
// a separator, Micropause Now!, Exercise Now!, a separator, one item per exercise scheme (mnuX_1,
// mnuX_2, ...), a separator and Shutdown Tarvo. The QActions carry the item names as object names.
class TrayMenu : public QObject {
    Q_OBJECT

public:
    // `schemeNames` reads the scheme list from the store, in stored order; it may throw a run-time
    // error for an unreadable list.
    TrayMenu(std::function<QStringList()> schemeNames, TrayMenuActions actions, QObject* parent = nullptr);
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

    std::function<QStringList()> schemeNames_;
    TrayMenuActions actions_;
    std::unique_ptr<QMenu> mnuPopup_;
    // mnuX_1, mnuX_2, ...: element k at index k - 1.
    std::vector<QAction*> mnuX_;
    QAction* mnuPopupDash2_ = nullptr;
};

} // namespace tarvo
