// pichook: the tray icon's messages decoded from twips, the busy flag, and the other instance's key codes.
#include "FakeTrayIcon.h"
#include "MemoryRegistryStore.h"
#include "RuntimeError.h"
#include "SchemeStore.h"
#include "SettingsStore.h"
#include "TrayHook.h"
#include "TrayMenu.h"

#include <QtTest>

using namespace tarvo;

namespace {

constexpr double kTwips = 15.0; // 96 dots per inch
const QPoint kMouse(613, 407);

} // namespace

class TestTrayHook : public QObject {
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

    void messages_data() {
        QTest::addColumn<int>("message");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("left double click opens the options") << 0x203 << QStringList{"LoadMeUp"};
        QTest::newRow("right button up pops the menu up") << 0x205 << QStringList{"popup"};
        QTest::newRow("left single click") << 0x202 << QStringList{};
        QTest::newRow("mouse move") << 0x200 << QStringList{};
        QTest::newRow("right button down") << 0x204 << QStringList{};
        QTest::newRow("middle button up") << 0x208 << QStringList{};
    }
    void messages() {
        QFETCH(int, message);
        QFETCH(QStringList, expected);
        hook_->pichook_MouseMove(0, 0, message * kTwips, 0);
        QCOMPARE(log_, expected);
    }

    // X is in twips: only the screen's own factor turns it into the message.
    void messageNumberDependsOnTheTwipsFactor() {
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
        QCOMPARE(icon_->popUps()[1].defaultItem, QStringLiteral("mnuPopupOptions"));
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

    // What the icon sends: a double click is a single click first, and only the double click acts.
    // The tip is cut to the tray record's 63 characters and its terminating zero.
    void iconMessagesReachTheHook() {
        hook_->addIcon(QIcon(), QString(70, 'x'));
        QCOMPARE(icon_->tip(), QString(63, 'x'));
        icon_->deliver(0x202);
        icon_->deliver(0x203);
        icon_->deliver(0x205);
        QCOMPARE(log_, QStringList({"LoadMeUp", "popup"}));
        hook_->removeIcon();
        QVERIFY(!icon_->added());
    }

    void keyCodes() {
        hook_->pichook_KeyDown(99, 0);
        QCOMPARE(log_, QStringList{"shutdown"});
        hook_->pichook_KeyDown(0, 0);
        hook_->pichook_KeyDown(13, 0);
        QCOMPARE(log_, QStringList({"shutdown", "popup", "popup"}));
    }

private:
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

    // The options dialog's item, for the default item in bold.
    static TrayMenuActions optionsOnly() {
        TrayMenuActions actions;
        actions.options = [] {};
        return actions;
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
    std::unique_ptr<FakeTrayIcon> icon_;
    TrayMenu menu_{[this] { return readSchemeList(settings_); }, optionsOnly()};
    std::unique_ptr<TrayHook> hook_;
    std::function<void()> loadMeUp_;
    QStringList log_;
};

QTEST_MAIN(TestTrayHook)
#include "tst_trayhook.moc"
