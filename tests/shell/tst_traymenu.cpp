// The tray menu: its items in order, the scheme list rebuilt from the store, and the items' actions;
// and pichook, which pops it up: the tray icon's messages decoded from twips, the busy flag, and the
// other instance's key codes.
#include "core/RuntimeError.h"
#include "engine/SchemeStore.h"
#include "platform/fake/FakeTrayIcon.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "settings/SettingsStore.h"
#include "shell/TrayActions.h"
#include "shell/TrayHook.h"
#include "shell/TrayMenu.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QtTest>

using namespace tarvo;

namespace {

constexpr double kTwips = 15.0; // 96 dots per inch

// The program's side: each action noted in one log; the options dialog may run something while it is up.
struct Actions : TrayActions {
    QStringList log;
    std::function<void()> whileOptionsUp;
    void LoadMeUp() override {
        log << "LoadMeUp";
        if (whileOptionsUp)
            whileOptionsUp();
    }
    void showStatus() override { log << "status"; }
    void showAbout() override { log << "about"; }
    void micropauseNow() override { log << "micropause"; }
    void exerciseNow() override { log << "exercise"; }
    void useScheme(const QString& name) override { log << "scheme " + name; }
    void shutdown() override { log << "shutdown"; }
};

// "objectName caption" per item in menu order, "-" for a separator.
QStringList items(TrayMenu& menu) {
    QStringList out;
    for (const QAction* action : menu.mnuPopup().actions())
        out << action->objectName() + ' ' + (action->isSeparator() ? QStringLiteral("-") : action->text());
    return out;
}

QStringList schemesShown(const FakeTrayIcon::PopUp& popUp) {
    QStringList names;
    for (qsizetype i = 0; i < popUp.itemNames.size(); ++i)
        if (popUp.itemNames[i].startsWith("mnuX_"))
            names << popUp.captions[i];
    return names;
}

} // namespace

class TestTrayMenu : public QObject {
    Q_OBJECT

private:
    MemoryRegistryStore store_;
    SettingsStore settings_{store_};
    Actions actions_;
    FakeTrayIcon icon_;
    std::unique_ptr<TrayMenu> menu_;
    std::unique_ptr<TrayHook> hook_;

private slots:
    void init() {
        actions_ = Actions();
        icon_.onPopUp = [this](QMenu&) { actions_.log << "popup"; };
        writeSchemeList(settings_, {"*Medium break", "Mine"});
        menu_ = std::make_unique<TrayMenu>(settings_, actions_);
        hook_ = std::make_unique<TrayHook>(icon_, *menu_, actions_, kTwips);
    }

    void itemsInOrderWithTheirCaptions() {
        QCOMPARE(menu_->mnuPopup().objectName(), "mnuPopup");
        QCOMPARE(items(*menu_), QStringList({"mnuPopupOptions &Options...", "mnuPopupStatus &Status...",
                                             "mnuPopupAbout &About...", "mnuPopupDash1 -",
                                             "mnuDemoMicropause &Micropause Now!",
                                             "mnuExercise &Exercise Now!", "mnuPopupDash3 -", "mnuX_1 Scheme",
                                             "mnuPopupDash2 -", "mnuShutdownTarvo Sh&utdown Tarvo"}));
        QCOMPARE(menu_->mnuPopup().defaultAction(), menu_->mnuPopup().actions().first()); // Options
        QVERIFY(menu_->mnuPopup().defaultAction()->font().bold());
    }

    // The list is read again on every call, in stored order; a shorter list takes surplus items away.
    // The designed element stays: with nothing stored, or a damaged "Num", it keeps its caption. A
    // scheme item names the scheme it shows at the time of the click.
    void LoadMnuX_followsTheStore() {
        // The scheme items and the separator after them, once the store holds `names`.
        const auto schemeItems = [this](const QStringList& names) {
            writeSchemeList(settings_, names);
            menu_->LoadMnuX();
            return items(*menu_).mid(7, std::max<qsizetype>(names.size(), 1) + 1).join(", ");
        };
        QCOMPARE(schemeItems({}), "mnuX_1 Scheme, mnuPopupDash2 -");
        QCOMPARE(schemeItems({"A", "B"}), "mnuX_1 A, mnuX_2 B, mnuPopupDash2 -");
        QCOMPARE(schemeItems({"C", "A", "B", "D"}),
                 "mnuX_1 C, mnuX_2 A, mnuX_3 B, mnuX_4 D, mnuPopupDash2 -");
        QCOMPARE(schemeItems({"B"}), "mnuX_1 B, mnuPopupDash2 -");
        QCOMPARE(menu_->mnuPopup().findChildren<QAction*>(QRegularExpression("^mnuX_")).size(), 1);
        schemeItems({"A", "B", "C"});
        store_.setValue(kSchemesSection, "Num", "three");
        menu_->LoadMnuX(); // must not throw: the menu has to come up whatever the store holds
        QCOMPARE(items(*menu_).mid(7, 2).join(", "), "mnuX_1 A, mnuPopupDash2 -");

        schemeItems({"*Medium break", "Mine"});
        for (QAction* action : menu_->mnuPopup().actions())
            action->trigger();
        QCOMPARE(actions_.log, QStringList({"LoadMeUp", "status", "about", "micropause", "exercise",
                                            "scheme *Medium break", "scheme Mine", "shutdown"}));
    }

    // The icon, added through pichook with its tip cut to the tray record's 63 characters: only a left
    // double click and a right button up act, at the screen's own twips; a key code pops the menu up at
    // the mouse with the store's schemes of the moment, but 99 shuts down.
    void messagesAndKeyCodes() {
        hook_->addIcon(QIcon(), QString(70, 'x'));
        QCOMPARE(icon_.tip(), QString(63, 'x'));
        for (const auto& [message, acts] :
             {std::pair{0x203, "LoadMeUp"}, std::pair{0x205, "popup"}, std::pair{0x202, ""},
              std::pair{0x200, ""}, std::pair{0x204, ""}, std::pair{0x208, ""}}) {
            actions_.log.clear();
            icon_.deliver(message);
            QCOMPARE(QString::number(message, 16) + ':' + actions_.log.join(' '),
                     QString::number(message, 16) + ':' + acts);
        }
        actions_.log.clear();
        QCursor::setPos(613, 407);
        writeSchemeList(settings_, {"Other", "*Medium break", "Third"});
        for (const int keyCode : {99, 0, 13})
            hook_->keyDown(keyCode);
        QCOMPARE(actions_.log, QStringList({"shutdown", "popup", "popup"}));
        QCOMPARE(schemesShown(icon_.popUps().front()), QStringList({"*Medium break", "Mine"}));
        QCOMPARE(schemesShown(icon_.popUps().back()), QStringList({"Other", "*Medium break", "Third"}));
        QCOMPARE(icon_.popUps().back().position, QPoint(613, 407));

        // X is in twips: only the screen's own factor turns it into the message.
        actions_.log.clear();
        TrayHook at120dpi(icon_, *menu_, actions_, TrayHook::twipsPerPixelX(120)); // 12
        at120dpi.pichook_MouseMove(0, 0, 0x205 * 15.0, 0); // as a 96-dpi screen would send it
        QVERIFY(actions_.log.isEmpty());
        at120dpi.pichook_MouseMove(0, 0, 0x205 * 12.0, 0);
        QCOMPARE(actions_.log, QStringList{"popup"});
        hook_->removeIcon();
        QVERIFY(!icon_.added());
    }

    // Events that arrive while the menu or the options dialog is up (their event loops run) are
    // dropped; once it has closed, the next one is handled again, also after an error.
    void eventsWhileBusyAreIgnored() {
        icon_.onPopUp = [this](QMenu&) {
            actions_.log << "popup";
            hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0);
            hook_->pichook_MouseMove(0, 0, 0x203 * kTwips, 0);
            hook_->pichook_KeyDown(0, 0);
        };
        actions_.whileOptionsUp = [this] { hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0); };
        hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0);
        hook_->pichook_MouseMove(0, 0, 0x203 * kTwips, 0);
        QCOMPARE(actions_.log, QStringList({"popup", "LoadMeUp"}));

        actions_.whileOptionsUp = [] { throw RuntimeError(vberr::InvalidCall); };
        QVERIFY_THROWS_EXCEPTION(RuntimeError, hook_->pichook_MouseMove(0, 0, 0x203 * kTwips, 0));
        icon_.onPopUp = [this](QMenu&) { actions_.log << "popup"; };
        hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0);
        QCOMPARE(actions_.log, QStringList({"popup", "LoadMeUp", "LoadMeUp", "popup"}));
    }
};

QTEST_MAIN(TestTrayMenu)
#include "tst_traymenu.moc"
