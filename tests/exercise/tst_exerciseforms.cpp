// The exercise break's forms on the engine with fakes: the player shows each exercise with its
// commands and layout, its gestures reach the break from mouse and keyboard, and the prompt offers,
// starts and puts off a break.
#include "engine/BreakEngine.h"
#include "exercise/ExerciseScreens.h"
#include "exercise/frmChkExercise.h"
#include "exercise/frmX.h"
#include "support/FakeContext.h"
#include "support/QuietViews.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QWindow>
#include <QtTest>

using namespace tarvo;

namespace {

// Two exercises, a video and a picture, from the program folder; breaks of nine.
struct Rig : FakeContext {
    QuietViews elsewhere; // the main form and the speakers: the engine's and the micropause's tests
    ExerciseScreens screens{ctx};
    BreakEngine engine{ctx, elsewhere, screens, elsewhere};
    ExerciseSequencer& exercise = engine.exercise();

    Rig()
        : FakeContext(QStringLiteral(TARVO_PROGRAM_DIR)) {
        screens.attach(exercise);
        ctx.exercises.Exercises = {titleExercise(),
                                   {"neckturn.avi", "Turn your head", 1, 20},
                                   {"armcross.bmp", "Hug arm %1, then arm %2", 1, 20}};
        ctx.exercises.ExerciseCount = 2;
        store.model().setValue("Exercise", "NumAtaTime", "9");
        engine.scheduler().SetTimers();
    }
    frmX& player() { return *screens.player(); }
    // The player's title a number of seconds on.
    QString titleAfter(int seconds) {
        timeline.advance(seconds * 1000);
        return player().windowTitle();
    }
    void startABreak() {
        exercise.exerciseNowFromTray();
        timeline.advance(1000);
        QVERIFY(QTest::qWaitForWindowExposed(&player()));
    }
};

} // namespace

class TestExerciseForms : public QObject {
    Q_OBJECT

private slots:
    // The title's video opens on the one alias inside amx and loops; blanked, the player is maximised
    // over its black backdrop and stays on top; not blanked, it keeps its own size around the media,
    // and its place once the user has moved it, also in the next break. The mouse and the keyboard
    // reach the break: Tab reaches the media, where Esc jumps to the last exercise (without asking) so
    // that the next tick wraps to the first, and a click or Enter skips; next and previous step through
    // the exercises, pause stops the countdown and switches the buttons; Esc on the form asks whether to quit
    // and leaves the countdown running after No, even when it had been paused; the stop button with Yes ends
    // the break. In a Wayland session the blanked player is full screen instead of maximised.
    void thePlayerAndItsGestures() {
        Rig rig;
        rig.startABreak();
        frmX& player = rig.player();
        QCOMPARE(player.windowTitle(), "Gently now... (10)");
        const QStringList commands = rig.media.commands(); // the commands themselves: the controls' test
        QVERIFY(commands.size() == 5 && commands.last() == "play tarvox repeat" &&
                commands[2].contains(" parent " + QString::number(player.surface().handle()) + " "));
        QVERIFY((player.windowState() & Qt::WindowMaximized) &&
                (player.windowFlags() & Qt::WindowStaysOnTopHint));
        QVERIFY(player.findChild<QWidget*>("picBlack")->isVisible() && player.surface().isVisible());

        rig.exercise.amx_Click();
        rig.timeline.advance(1000);
        rig.ctx.record.BlankX = 0;
        rig.exercise.amx_Click(); // on to the picture
        QCOMPARE(rig.titleAfter(1), "Hug arm %1, then arm %2 (20)");
        QVERIFY(!(player.windowState() & Qt::WindowMaximized) &&
                !player.findChild<QWidget*>("picBlack")->isVisible());
        QVERIFY(player.surface().hasPicture() && player.surface().isVisible());
        QVERIFY(player.rect().contains(player.findChild<QWidget*>("MMControl1")->geometry()));

        int afterBreak = 0;
        rig.screens.setAfterBreak([&] { ++afterBreak; });
        player.move(player.pos() + QPoint(200, 100)); // by the user
        const QPoint moved = player.pos();
        rig.exercise.amx_DblClick();
        rig.timeline.advance(1000);
        QVERIFY(!player.isVisible());
        // Between breaks the window is given back; the next break shows the player where it was left.
        QTRY_VERIFY(!player.testAttribute(Qt::WA_WState_Created) && afterBreak == 1);
        QVERIFY(!player.surface().hasPicture()); // nor is the last picture kept
        rig.startABreak();
        QCOMPARE(player.pos(), moved);

        QCOMPARE(player.windowTitle(), "Turn your head (20)");
        player.surface().setFocus();
        QTest::keyClick(&player.surface(), Qt::Key_Escape);
        QCOMPARE(rig.titleAfter(1), "Turn your head (20)");
        QVERIFY(rig.messages.shown().empty());
        QTest::mouseClick(&player.surface(), Qt::LeftButton);
        QCOMPARE(rig.titleAfter(1), "Hug arm %1, then arm %2 (20)");
        QTest::keyClick(&player.surface(), Qt::Key_Return);
        QCOMPARE(rig.titleAfter(1), "Turn your head (20)");
        player.findChild<QToolButton*>("Next")->click();
        rig.timeline.advance(1000);
        player.findChild<QToolButton*>("Prev")->click();
        QCOMPARE(player.windowTitle(), "Turn your head (20)");

        auto* pause = player.findChild<QToolButton*>("Pause");
        auto* play = player.findChild<QToolButton*>("Play");
        pause->click();
        QCOMPARE(rig.titleAfter(5), "Turn your head (20)");
        QVERIFY(!pause->isEnabled() && play->isEnabled() &&
                !player.findChild<QToolButton*>("Next")->isEnabled());
        play->click();
        QCOMPARE(rig.titleAfter(1), "Turn your head (19)");

        pause->click();
        QTest::keyClick(&player, Qt::Key_Escape);
        QCOMPARE(rig.messages.shown().back().text, "Are you sure you want to quit the exercise break?");
        QCOMPARE(rig.messages.shown().back().title, "Tarvo Exercise Break");
        QCOMPARE(rig.titleAfter(1), "Turn your head (18)");
        QVERIFY(pause->isEnabled());

        rig.messages.answerNext(MessageBox::Answer::Yes);
        player.findChild<QToolButton*>("Stop")->click();
        rig.timeline.advance(1000);
        QVERIFY(!rig.ctx.schedule.InExerciseBreak && !player.isVisible());

        rig.windowSession.inWayland = true; // whose window manager may tile a maximised window
        rig.ctx.record.BlankX = 1;
        rig.startABreak();
        QVERIFY(player.windowState() & Qt::WindowFullScreen);
    }

    // The prompt shows the last postponement, which becomes the minutes to the next prompt; Later takes
    // what was typed (5 for anything but a number, at most 120, no lower limit), saves it and closes the
    // prompt, so that the exercise countdown runs again and brings the prompt back when it runs out;
    // Exercise Now starts the break. In a Wayland session it comes without taking the keyboard.
    void thePromptPutsTheBreakOffOrStartsIt() {
        Rig rig;
        rig.windowSession.inWayland = true;
        rig.store.model().setValue("Exercise", "ProcrastinateM", "7");
        QString last = "7";
        for (const auto& [typed, minutes] : {std::pair{"abc", 5}, std::pair{"-3", -3}, std::pair{"0", 0},
                                             std::pair{"999", 120}, std::pair{" 12 ", 12}}) {
            rig.ctx.schedule.ExercisePromptPending = true;
            rig.screens.showExercisePrompt();
            QPointer<frmChkExercise> prompt = rig.screens.prompt();
            auto* field = prompt->findChild<QComboBox*>("cmbMinutes");
            QVERIFY(field->currentText() == last && rig.ctx.schedule.MinutesToExercise == last.toInt());
            field->setEditText(QLatin1String(typed));
            prompt->findChild<QPushButton*>("cmdWait")->click();
            QTRY_VERIFY(!prompt && !rig.ctx.schedule.ExercisePromptPending);
            QCOMPARE(rig.ctx.schedule.MinutesToExercise, minutes);
            last = QString::number(minutes);
        }
        rig.timeline.advance(12 * 60000);
        frmChkExercise* prompt = rig.screens.prompt(); // once the 12 minutes have run out
        QVERIFY(prompt && rig.windowSession.windows.back() == prompt);
        // It takes no keyboard when it comes, until the user clicks into it.
        QVERIFY(prompt->windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
        QTest::mousePress(prompt->findChild<QComboBox*>("cmbMinutes")->lineEdit(), Qt::LeftButton);
        QVERIFY(!prompt->windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
        prompt->findChild<QPushButton*>("cmdOK")->click();
        QVERIFY(rig.ctx.schedule.InExerciseBreak && rig.ctx.schedule.MinutesToExercise == 0);
    }

    // A player about centred (less than 50 twips off either way) stays put; one further off is centred.
    void centredOnlyWhenOffBy50Twips() {
        const QRect screen(0, 0, 1000, 800);
        QCOMPARE(frmX::xLoadMeUp(screen, QRect(403, 303, 200, 200), 15.0), std::nullopt);
        QCOMPARE(frmX::xLoadMeUp(screen, QRect(396, 300, 200, 200), 15.0), std::optional(QPoint(400, 300)));
        QCOMPARE(frmX::xLoadMeUp(screen, QRect(400, 296, 200, 200), 15.0), std::optional(QPoint(400, 300)));
    }
};

QTEST_MAIN(TestExerciseForms)
#include "tst_exerciseforms.moc"
