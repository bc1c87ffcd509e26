// Start-up and shut-down with every seam faked: the first run, the order in which options are read and
// the program is switched on, and what shut-down undoes; a second start's decision about the running
// instance. And the tray menu: its items in order, the scheme list rebuilt from the store, and the
// items' actions; and pichook, which pops it up: the tray icon's messages decoded from twips, the busy
// flag, and the other instance's key codes.
#include "core/RuntimeError.h"
#include "engine/BreakEngine.h"
#include "engine/SchemeStore.h"
#include "micropause/MainForm.h"
#include "micropause/frmTarvo.h"
#include "platform/fake/FakeSingleInstance.h"
#include "platform/fake/FakeTrayIcon.h"
#include "platform/fake/RecordingProcessRunner.h"
#include "settings/SettingsStore.h"
#include "shell/ProgramIcon.h"
#include "shell/SecondStart.h"
#include "shell/TarvoProgram.h"
#include "shell/TrayActions.h"
#include "shell/TrayHook.h"
#include "shell/TrayMenu.h"
#include "support/FakeContext.h"
#include "support/Programs.h"
#include "support/Raised.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

using namespace tarvo;

namespace {

struct Folder {
    QTemporaryDir folder; // the program folder
};

struct Rig : Folder, FakeContext {
    Rig()
        : FakeContext(folder.path())
        , shell{instance, tray, processes, folder.filePath("windows")} {}

    RecordingProcessRunner processes;
    FakeSingleInstance instance;
    FakeTrayIcon tray;
    ShellContext shell;
    TarvoProgram program{ctx, shell, QIcon()};
    QStringList writtenKeys() const {
        QStringList keys;
        for (const auto& w : store.writes())
            keys << w.section + '/' + w.key + '=' + w.text;
        return keys;
    }
};

constexpr double kTwips = 15.0; // 96 dots per inch

// The program's side: each action noted in one log; the options dialog may run something while it is up.
struct Actions : TrayActions {
    QStringList log;
    std::function<void()> whileOptionsUp = [] {};
    void LoadMeUp() override {
        log << "LoadMeUp";
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
QStringList items(const QList<QAction*>& actions) {
    QStringList out;
    for (const QAction* action : actions)
        out << action->objectName() + ' ' + (action->isSeparator() ? QStringLiteral("-") : action->text());
    return out;
}

} // namespace

class TestTarvoProgram : public QObject {
    Q_OBJECT

private slots:
    void firstStartRunsTheImportAndMediaBeforeReadingOptions() {
        Rig rig;
        QList<qsizetype> readsBeforeRun;
        rig.processes.onRun = [&](const QString& command) {
            readsBeforeRun << rig.store.reads().size();
            // The import writes the shipped defaults; start-up must read what it wrote. Keyboard watching
            // off: only the mouse is watched.
            if (command.contains("tarvo32.reg")) {
                rig.store.model().setValue("Micropause", "InterruptEvery", "7");
                rig.store.model().setValue("Micropause", "Monitor0", "0");
            }
        };
        rig.program.Form_Load();

        const QString dir = rig.folder.path();
        QCOMPARE(rig.processes.commands(),
                 (QStringList{dir + "/regedit /s \"" + dir + "/tarvo32.reg\"", dir + "/tarvomultimedia"}));
        QVERIFY(rig.store.reads().first() == "Options/Initialised" &&
                readsBeforeRun == QList<qsizetype>({1, 1}));
        QCOMPARE(rig.writtenKeys(),
                 (QStringList{"Options/tray=4242", "Options/Initialised=1", "Options/AppPath=" + dir}));

        // Switched on: channels watched, schedule armed, stamps seeded, scheme loaded, icon added.
        QVERIFY(!rig.monitor.isOn(0) && rig.monitor.isOn(1) && rig.instance.isListening());
        QVERIFY(rig.program.engine().tMinutes().isEnabled() && rig.program.engine().tSeconds().isEnabled());
        QVERIFY(rig.ctx.record.InterruptEvery == 7 && rig.ctx.schedule.MinutesToMicropause == 7);
        QCOMPARE(rig.ctx.schedule.LastActivityTimes, (std::array<std::int32_t, 2>{1000, 1000}));
        QVERIFY(rig.tray.added() && !rig.program.mainForm().form());
        QCOMPARE(rig.ctx.exercises.CurrentScheme, "*Medium break");
        QCOMPARE(rig.program.engine().exercise().ExercisesPerBreak, 6); // "NumAtaTime" at start-up

        QCOMPARE(rig.tray.tip(), "Tarvo Micropause");

        // The icon's right click and another start's key code pop the menu up; the menu's items act.
        rig.tray.onPopUp = [&](QMenu& menu) {
            menu.findChild<QAction*>("mnuPopupStatus")->trigger();
            menu.findChild<QAction*>("mnuDemoMicropause")->trigger();
        };
        rig.tray.deliver(0x205);
        QVERIFY(rig.program.mainForm().form()->isVisible() && rig.ctx.schedule.InMicropause);
        QVERIFY(rig.instance.deliverKeyDown(0));
        QCOMPARE(rig.tray.popUps().size(), size_t(2));
        // "&Exercise Now!": the exercise warning, then a break with "NumAtaTime" read afresh (the
        // store holds no exercises here, so the break ends before it shows anything).
        rig.store.model().setValue("Exercise", "NumAtaTime", "3");
        rig.program.menu().mnuPopup().findChild<QAction*>("mnuExercise")->trigger();
        QVERIFY(rig.sound.beeps() > 0 && !rig.ctx.schedule.InExerciseBreak);
        QCOMPARE(rig.program.engine().exercise().ExercisesPerBreak, 3);

        // Shut-down (key code 99 from another start) undoes it, whatever the "Monitor" options said, and
        // only once.
        rig.store.clearWrites();
        QVERIFY(rig.instance.deliverKeyDown(99));
        rig.program.Form_Unload();
        QVERIFY(!rig.monitor.isOn(0) && !rig.monitor.isOn(1) && !rig.tray.added());
        QVERIFY(rig.writtenKeys() == QStringList{"Options/tray=0"} &&
                rig.media.commands().last() == "close tarvox");
        QVERIFY(rig.instance.releaseCalls() == 1 && !rig.instance.isListening());
    }

    // A double click opens the options dialog. A scheme chosen in the tray while the dialog's editor
    // shows another goes through the editor, so that Apply saves each scheme's exercises under its own
    // name and stores the scheme that is loaded.
    void oneOwnerOfTheCurrentScheme() {
        Rig rig;
        rig.store.model().setValue("Options", "Initialised", "1");
        writeSchemeList(rig.ctx.settings, {"*Medium break", "Mine"});
        SaveScheme(rig.ctx.settings, "Mine", {{}, {"mine.avi", "Mine only", 1, 40}}, 1);
        SaveScheme(rig.ctx.settings, "*Medium break", {{}, {"a.avi", "A", 1, 20}, {"b.avi", "B", 1, 20}}, 2);
        rig.program.Form_Load();
        rig.tray.deliver(0x203);
        const auto widgets = QApplication::topLevelWidgets();
        QWidget* dialog = *std::find_if(widgets.begin(), widgets.end(),
                                        [](QWidget* w) { return w->objectName() == "frmSettings"; });
        QVERIFY(dialog->isVisible());

        rig.program.menu().LoadMnuX();
        rig.program.menu().mnuPopup().findChild<QAction*>("mnuX_2")->trigger();
        QVERIFY(rig.ctx.exercises.CurrentScheme == "Mine" &&
                dialog->findChild<QComboBox*>("cmbSchemes")->currentText() == "Mine");
        QCOMPARE(dialog->findChild<QTreeWidget*>("l")->topLevelItemCount(), 1);
        QTest::mouseClick(dialog->findChild<QPushButton*>("cmdApply"), Qt::LeftButton);
        QCOMPARE(rig.store.model().value("Exercise", "Scheme"), std::optional<QString>("Mine"));
        QCOMPARE(rig.store.model().value("SchemeMine", "1"), std::optional<QString>("mine.avi"));
        QCOMPARE(rig.store.model().value("Scheme*Medium break", "2"), std::optional<QString>("b.avi"));
    }

    // The system's editor, where it exists, is used and the program folder's copy goes; otherwise the
    // copy is used and kept. Done once.
    void theEditorChoice() {
        for (const bool systemEditor : {true, false}) {
            Rig rig;
            if (systemEditor)
                QVERIFY(writeFile(rig.shell.windir + "/regedit", {}));
            QVERIFY(writeFile(rig.folder.filePath("regedit"), {}));
            rig.program.FirstTimeInitialise();
            rig.program.FirstTimeInitialise();
            QCOMPARE(rig.processes.commands().size(), 2);
            const QString used = systemEditor ? rig.shell.windir : rig.folder.path();
            QVERIFY(rig.processes.commands().first().startsWith(used + "/regedit /s \""));
            QCOMPARE(QFile::exists(rig.folder.filePath("regedit")), !systemEditor);
        }
    }

    // A second start sends the key code of its command line to the instance that the settings name and
    // the lock holds (or that it cannot tell from the lock), and writes nothing. What it cannot reach, it
    // says why (the other cases of a settings' name that is not the holder's run end to end).
    void aSecondStart() {
        QVERIFY(isShutdownRequest("SHUTDOWN") && !isShutdownRequest("shut down"));
        using D = SingleInstance::Delivery;
        // The lock's holder, what a send meets, shut-down: what is found, and what is said.
        const std::tuple<int, D, bool, RunningInstance, const char*> cases[] = {
            {9, D::Handled, false, RunningInstance::Signalled, ""},
            {0, D::Handled, true, RunningInstance::Signalled, ""},
            {9, D::NotListening, false, RunningInstance::Unreachable,
             "reach the running instance (process 9): it does not"},
            {9, D::NoAnswer, true, RunningInstance::Unreachable,
             "shut down the running instance (process 9): it did not"}};
        for (const auto& [holder, delivery, shutdown, found, says] : cases) {
            FakeSingleInstance instance;
            instance.setOtherInstanceRunning(true, holder);
            instance.setDelivery(delivery);
            MemoryRegistryStore store;
            store.model().setValue("Options", "tray", "9");
            SettingsStore settings(store);
            const SecondStart second = signalRunningInstance(instance, settings, shutdown);
            QVERIFY2(second.found == found && second.problem.contains(says) &&
                         second.problem.isEmpty() == !*says,
                     qPrintable(second.problem));
            QVERIFY((instance.sent() == std::vector{FakeSingleInstance::Sent{9, shutdown ? 99 : 0}}) &&
                    store.writes().empty());
        }
    }

    void aBadOptionStopsStartUp() {
        Rig rig;
        rig.store.model().setValue("Options", "Initialised", "1");
        rig.store.model().setValue("Exercise", "NumAtaTime", "six");
        const auto e = raised<RuntimeError>([&] { rig.program.Form_Load(); });
        QVERIFY(e && e->number() == vberr::TypeMismatch && e->context().contains("NumAtaTime"));
        QCOMPARE(rig.writtenKeys(), QStringList{"Options/tray=4242"}); // only what start-up writes first
        QVERIFY(!rig.monitor.isOn(0) && !rig.monitor.isOn(1));
        QVERIFY(!rig.instance.isListening()); // the error box's own event loop answers nobody
    }

    // The icon has a picture for each common size: the badge fills the square, its pause bars light on
    // a dark body.
    void programIconIsDrawnAtEverySize() {
        for (const int size : {16, 22, 32, 256}) {
            const QImage image = programIcon().pixmap(size, size).toImage();
            const auto light = [&](double x) { return QColor(image.pixel(x * size, size / 2)).lightness(); };
            QVERIFY2(image.size() == QSize(size, size) && qAlpha(image.pixel(size / 2, 1)) > 0 &&
                         light(0.34) > 220 && light(0.66) > 220 && light(0.5) < 140,
                     QByteArray::number(size));
        }
    }

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

    // The items in order, with their captions, Options the bold default; the scheme list is read again
    // on every call, in stored order; a shorter list takes surplus items away. The designed element
    // stays: with nothing stored, or a damaged "Num", it keeps its caption. A scheme item names the
    // scheme it shows at the time of the click.
    void theMenuFollowsTheStore() {
        QStringList captions;
        for (const QAction* action : menu_->mnuPopup().actions())
            captions << action->text();
        QCOMPARE(
            captions.join('|'),
            "&Options...|&Status...|&About...||&Micropause Now!|&Exercise Now!||Scheme||Sh&utdown Tarvo");
        QVERIFY(menu_->mnuPopup().defaultAction() == menu_->mnuPopup().actions().first() &&
                menu_->mnuPopup().defaultAction()->font().bold());
        // The scheme items and the separator after them, once the store holds `names`.
        const auto schemeItems = [this](const QStringList& names) {
            writeSchemeList(settings_, names);
            menu_->LoadMnuX();
            return items(menu_->mnuPopup().actions().mid(7, std::max<qsizetype>(names.size(), 1) + 1))
                .join(", ");
        };
        QCOMPARE(schemeItems({}), "mnuX_1 Scheme, mnuPopupDash2 -");
        QCOMPARE(schemeItems({"C", "A", "B", "D"}),
                 "mnuX_1 C, mnuX_2 A, mnuX_3 B, mnuX_4 D, mnuPopupDash2 -");
        QCOMPARE(schemeItems({"B"}), "mnuX_1 B, mnuPopupDash2 -");
        QCOMPARE(menu_->mnuPopup().findChildren<QAction*>(QRegularExpression("^mnuX_")).size(), 1);
        schemeItems({"A", "B", "C"});
        store_.setValue(kSchemesSection, "Num", "three");
        menu_->LoadMnuX(); // must not throw: the menu has to come up whatever the store holds
        QCOMPARE(items(menu_->mnuPopup().actions().mid(7, 2)).join(", "), "mnuX_1 A, mnuPopupDash2 -");

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
        for (const int message : {0x203, 0x205, 0x202, 0x200, 0x204, 0x208})
            icon_.deliver(message);
        QCOMPARE(actions_.log, QStringList({"LoadMeUp", "popup"}));
        actions_.log.clear();
        QCursor::setPos(613, 407);
        writeSchemeList(settings_, {"Other", "*Medium break", "Third"});
        for (const int keyCode : {99, 0, 13})
            hook_->keyDown(keyCode);
        QCOMPARE(actions_.log, QStringList({"shutdown", "popup", "popup"}));
        QCOMPARE(icon_.popUps().back().captions.mid(7, 3), QStringList({"Other", "*Medium break", "Third"}));
        QCOMPARE(icon_.popUps().back().position, QPoint(613, 407));

        // X is in twips: only the screen's own factor turns it into the message.
        actions_.log.clear();
        TrayHook at120dpi(icon_, *menu_, actions_, TrayHook::twipsPerPixelX(120)); // 12
        at120dpi.pichook_MouseMove(0, 0, 0x205 * 15.0, 0); // as a 96-dpi screen would send it
        at120dpi.pichook_MouseMove(0, 0, 0x205 * 12.0, 0);
        hook_->removeIcon();
        QVERIFY(actions_.log == QStringList{"popup"} && !icon_.added());
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

QTEST_MAIN(TestTarvoProgram)
#include "tst_tarvoprogram.moc"
