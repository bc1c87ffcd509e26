// The tray menu: its items in order, the scheme list rebuilt from the store, and the items' actions;
// and pichook, which pops it up: the tray icon's messages decoded from twips, the busy flag, and the
// other instance's key codes.
#include "core/RuntimeError.h"
#include "exercise/SchemeStore.h"
#include "platform/fake/FakeTrayIcon.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "settings/SettingsStore.h"
#include "shell/TrayHook.h"
#include "shell/TrayMenu.h"

#include <QAction>
#include <QMenu>
#include <QtTest>

using namespace tarvo;

namespace {

constexpr double kTwips = 15.0; // 96 dots per inch
const QPoint kMouse(613, 407);

} // namespace

class TestTrayMenu : public QObject {
    Q_OBJECT

private slots:
    void init() {
        log_.clear();
        loadMeUp_ = nullptr;
        icon_ = std::make_unique<FakeTrayIcon>();
        icon_->onPopUp = [this](QMenu&) { log_ << "popup"; };
        writeSchemeList(settings_, {"*Medium break", "Mine"});
        hook_ = makeHook(kTwips);
    }

    void itemsInOrderWithTheirCaptions() {
        TrayMenu menu(schemeList(), wiredActions());
        QCOMPARE(menu.mnuPopup().objectName(), "mnuPopup");
        QCOMPARE(items(menu), QStringList({"mnuPopupOptions &Options...", "mnuPopupStatus &Status...",
                                           "mnuPopupAbout &About...", "mnuPopupDash1 -",
                                           "mnuDemoMicropause &Micropause Now!", "mnuExercise &Exercise Now!",
                                           "mnuPopupDash3 -", "mnuX_1 Scheme", "mnuPopupDash2 -",
                                           "mnuShutdownTarvo Sh&utdown Tarvo"}));
        QCOMPARE(menu.mnuPopup().defaultAction(), menu.mnuPopup().actions().first()); // Options

        // Until the options dialog and the exercise break exist, their items stay out.
        TrayMenuActions partial = wiredActions();
        partial.options = nullptr;
        partial.exerciseNow = nullptr;
        TrayMenu shorter(schemeList(), partial);
        QCOMPARE(items(shorter).size(), 8);
        QVERIFY(!items(shorter).join(' ').contains("Options") &&
                !items(shorter).join(' ').contains("Exercise"));
        QCOMPARE(shorter.mnuPopup().defaultAction(), nullptr);
    }

    // The list is read again on every call, in stored order; a shorter list takes surplus items away.
    // The designed element stays: with nothing stored, or a damaged "Num", it keeps its caption.
    void LoadMnuX_followsTheStore() {
        TrayMenu menu(schemeList(), wiredActions());
        writeSchemeList(settings_, {});
        menu.LoadMnuX();
        QCOMPARE(items(menu).mid(7, 2), QStringList({"mnuX_1 Scheme", "mnuPopupDash2 -"}));
        writeSchemeList(settings_, {"A", "B"});
        menu.LoadMnuX();
        writeSchemeList(settings_, {"C", "A", "B", "D"});
        menu.LoadMnuX();
        QCOMPARE(items(menu).mid(6, 6), QStringList({"mnuPopupDash3 -", "mnuX_1 C", "mnuX_2 A", "mnuX_3 B",
                                                     "mnuX_4 D", "mnuPopupDash2 -"}));
        writeSchemeList(settings_, {"B"});
        menu.LoadMnuX();
        QCOMPARE(items(menu).mid(6, 3), QStringList({"mnuPopupDash3 -", "mnuX_1 B", "mnuPopupDash2 -"}));
        QCOMPARE(menu.mnuPopup().findChildren<QAction*>(QRegularExpression("^mnuX_")).size(), 1);
        writeSchemeList(settings_, {"A", "B", "C"});
        menu.LoadMnuX();
        store_.setValue(kSchemesSection, "Num", "three");
        menu.LoadMnuX(); // must not throw: the menu has to come up whatever the store holds
        QCOMPARE(items(menu).mid(7, 2), QStringList({"mnuX_1 A", "mnuPopupDash2 -"}));
    }

    // A scheme item names the scheme it shows at the time of the click.
    void eachItemReachesItsAction() {
        TrayMenu menu(schemeList(), wiredActions());
        writeSchemeList(settings_, {"*Medium break", "Mine"});
        menu.LoadMnuX();
        for (QAction* action : menu.mnuPopup().actions())
            action->trigger();
        QCOMPARE(log_, QStringList({"options", "status", "about", "micropause", "exercise",
                                    "scheme 1 *Medium break", "scheme 2 Mine", "shutdown"}));
    }

    // Only a left double click and a right button up act; a key code pops the menu up, but 99 shuts down.
    void messagesAndKeyCodes() {
        for (const auto& [message, acts] :
             {std::pair{0x203, "LoadMeUp"}, std::pair{0x205, "popup"}, std::pair{0x202, ""},
              std::pair{0x200, ""}, std::pair{0x204, ""}, std::pair{0x208, ""}}) {
            log_.clear();
            hook_->pichook_MouseMove(0, 0, message * kTwips, 0);
            QCOMPARE(QString::number(message, 16) + ':' + log_.join(' '),
                     QString::number(message, 16) + ':' + acts);
        }
        log_.clear();
        for (const int keyCode : {99, 0, 13})
            hook_->pichook_KeyDown(keyCode, 0);
        QCOMPARE(log_, QStringList({"shutdown", "popup", "popup"}));

        // X is in twips: only the screen's own factor turns it into the message.
        log_.clear();
        hook_ = makeHook(TrayHook::twipsPerPixelX(120)); // 12
        hook_->pichook_MouseMove(0, 0, 0x205 * 15.0, 0); // as a 96-dpi screen would send it
        QVERIFY(log_.isEmpty());
        hook_->pichook_MouseMove(0, 0, 0x205 * 12.0, 0);
        QCOMPARE(log_, QStringList{"popup"});
    }

    // The menu goes up at the mouse with the scheme list as the store holds it at that moment.
    void popupShowsTheCurrentSchemesAtTheMouse() {
        hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0);
        writeSchemeList(settings_, {"Other", "*Medium break", "Third"});
        hook_->pichook_KeyDown(0, 0);
        QCOMPARE(icon_->popUps().size(), 2u);
        QCOMPARE(schemesShown(icon_->popUps()[0]), QStringList({"*Medium break", "Mine"}));
        QCOMPARE(schemesShown(icon_->popUps()[1]), QStringList({"Other", "*Medium break", "Third"}));
        QCOMPARE(icon_->popUps()[1].position, kMouse);
    }

    // Events that arrive while the menu or the options dialog is up (their event loops run) are
    // dropped; once it has closed, the next one is handled again.
    void eventsWhileBusyAreIgnored() {
        icon_->onPopUp = [this](QMenu&) {
            log_ << "popup";
            hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0);
            hook_->pichook_MouseMove(0, 0, 0x203 * kTwips, 0);
            hook_->pichook_KeyDown(0, 0);
        };
        loadMeUp_ = [this] { hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0); };
        hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0);
        hook_->pichook_MouseMove(0, 0, 0x203 * kTwips, 0);
        QCOMPARE(log_, QStringList({"popup", "LoadMeUp"}));

        loadMeUp_ = [] { throw RuntimeError(vberr::InvalidCall); }; // an error must not leave the icon deaf
        QVERIFY_THROWS_EXCEPTION(RuntimeError, hook_->pichook_MouseMove(0, 0, 0x203 * kTwips, 0));
        icon_->onPopUp = [this](QMenu&) { log_ << "popup"; };
        hook_->pichook_MouseMove(0, 0, 0x205 * kTwips, 0);
        QCOMPARE(log_, QStringList({"popup", "LoadMeUp", "LoadMeUp", "popup"}));
    }

    // The icon's own messages reach the hook in twips. The tip is cut to the tray record's 63
    // characters and its terminating zero.
    void iconMessagesReachTheHook() {
        hook_->addIcon(QIcon(), QString(70, 'x'));
        QCOMPARE(icon_->tip(), QString(63, 'x'));
        icon_->deliver(0x203);
        icon_->deliver(0x205);
        QCOMPARE(log_, QStringList({"LoadMeUp", "popup"}));
        hook_->removeIcon();
        QVERIFY(!icon_->added());
    }

private:
    // "objectName caption" per item in menu order, "-" for a separator.
    static QStringList items(TrayMenu& menu) {
        QStringList out;
        for (const QAction* action : menu.mnuPopup().actions())
            out << action->objectName() + ' ' +
                       (action->isSeparator() ? QStringLiteral("-") : action->text());
        return out;
    }

    std::function<QStringList()> schemeList() {
        return [this] { return readSchemeList(settings_); };
    }

    TrayMenuActions wiredActions() {
        TrayMenuActions actions;
        actions.options = [this] { log_ << "options"; };
        actions.status = [this] { log_ << "status"; };
        actions.about = [this] { log_ << "about"; };
        actions.micropauseNow = [this] { log_ << "micropause"; };
        actions.exerciseNow = [this] { log_ << "exercise"; };
        actions.scheme = [this](int index, const QString& name) {
            log_ << QString("scheme %1 %2").arg(index).arg(name);
        };
        actions.shutdown = [this] { log_ << "shutdown"; };
        return actions;
    }

    std::unique_ptr<TrayHook> makeHook(double twips) {
        TrayHookActions actions;
        actions.LoadMeUp = [this] {
            log_ << "LoadMeUp";
            if (loadMeUp_)
                loadMeUp_();
        };
        actions.shutdown = [this] { log_ << "shutdown"; };
        actions.mousePosition = [] { return kMouse; };
        return std::make_unique<TrayHook>(*icon_, menu_, twips, actions);
    }

    static QStringList schemesShown(const FakeTrayIcon::PopUp& popUp) {
        QStringList names;
        for (qsizetype i = 0; i < popUp.itemNames.size(); ++i) {
            if (popUp.itemNames[i].startsWith("mnuX_"))
                names << popUp.captions[i];
        }
        return names;
    }

    MemoryRegistryStore store_;
    SettingsStore settings_{store_};
    QStringList log_;
    std::unique_ptr<FakeTrayIcon> icon_;
    TrayMenu menu_{schemeList(), TrayMenuActions()};
    std::unique_ptr<TrayHook> hook_;
    std::function<void()> loadMeUp_;
};

QTEST_MAIN(TestTrayMenu)
#include "tst_traymenu.moc"
