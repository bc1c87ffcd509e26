// The tray menu: its items in order, the scheme list rebuilt from the store, and the items' actions.
#include "MemoryRegistryStore.h"
#include "SchemeStore.h"
#include "SettingsStore.h"
#include "TrayMenu.h"

#include <QAction>
#include <QMenu>
#include <QtTest>

using namespace tarvo;

class TestTrayMenu : public QObject {
    Q_OBJECT

private slots:
    void init() { log_.clear(); }

    void itemsInOrderWithTheirCaptions() {
        TrayMenu menu(schemeList(), wiredActions());
        QCOMPARE(menu.mnuPopup().objectName(), QStringLiteral("mnuPopup"));
        QCOMPARE(items(menu), QStringList({"mnuPopupOptions &Options...", "mnuPopupStatus &Status...",
                                           "mnuPopupAbout &About...", "mnuPopupDash1 -",
                                           "mnuDemoMicropause &Micropause Now!", "mnuExercise &Exercise Now!",
                                           "mnuPopupDash3 -", "mnuX_1 Scheme", "mnuPopupDash2 -",
                                           "mnuShutdownTarvo Sh&utdown Tarvo"}));
        // Options is the default item, in bold; nothing else is.
        QAction* options = menu.mnuPopup().actions().first();
        QCOMPARE(menu.mnuPopup().defaultAction(), options);
        for (const QAction* action : menu.mnuPopup().actions())
            QCOMPARE(action->font().bold(), action == options);

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
    void LoadMnuX_followsTheStore() {
        TrayMenu menu(schemeList(), wiredActions());
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
    }

    // The designed element stays: with nothing stored, or a damaged "Num", it keeps its caption.
    void LoadMnuX_keepsTheDesignedElement() {
        TrayMenu menu(schemeList(), wiredActions());
        writeSchemeList(settings_, {});
        menu.LoadMnuX();
        QCOMPARE(items(menu).mid(7, 2), QStringList({"mnuX_1 Scheme", "mnuPopupDash2 -"}));
        writeSchemeList(settings_, {"A", "B", "C"});
        menu.LoadMnuX();
        store_.setValue(kSchemesSection, QStringLiteral("Num"), QStringLiteral("three"));
        menu.LoadMnuX(); // must not throw: the menu has to come up whatever the store holds
        QCOMPARE(items(menu).mid(7, 2), QStringList({"mnuX_1 A", "mnuPopupDash2 -"}));
    }

    // A scheme item names the scheme it shows at the time of the click.
    void eachItemReachesItsAction() {
        TrayMenu menu(schemeList(), wiredActions());
        writeSchemeList(settings_, {"A", "B"});
        menu.LoadMnuX();
        writeSchemeList(settings_, {"*Medium break", "Mine"});
        menu.LoadMnuX();
        for (QAction* action : menu.mnuPopup().actions())
            action->trigger();
        QCOMPARE(log_, QStringList({"options", "status", "about", "micropause", "exercise",
                                    "scheme 1 *Medium break", "scheme 2 Mine", "shutdown"}));
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

    MemoryRegistryStore store_;
    SettingsStore settings_{store_};
    QStringList log_;
};

QTEST_MAIN(TestTrayMenu)
#include "tst_traymenu.moc"
