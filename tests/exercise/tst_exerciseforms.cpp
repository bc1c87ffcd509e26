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
#include <QPushButton>
#include <QToolButton>
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
        ctx.exercises.Exercises.assign(103, ExerciseRecord{});
        ctx.exercises.Exercises[0] = titleExercise();
        ctx.exercises.Exercises[1] = {"neckturn.avi", "Turn your head", 1, 20};
        ctx.exercises.Exercises[2] = {"armcross.bmp", "Hug one arm", 1, 20};
        ctx.exercises.ExerciseCount = 2;
        store.model().setValue("Exercise", "NumAtaTime", "9");
        engine.scheduler().SetTimers();
    }
    frmX& player() { return *screens.player(); }
    template <typename T>
    T* child(const char* name) {
        return player().findChild<T*>(QLatin1String(name));
    }
    void startAndShowTheTitle() {
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
    // and its place once the user has moved it.
    void thePlayerShowsEachExercise() {
        Rig rig;
        rig.startAndShowTheTitle();
        frmX& player = rig.player();
        QCOMPARE(player.windowTitle(), "Gently now... (10)");
        const QString amx = QString::number(player.surface().handle());
        QCOMPARE(rig.media.commands(),
                 QStringList({"close tarvox", "close tarvox",
                              "open \"" TARVO_PROGRAM_DIR "/title.avi\" type AVIVideo alias tarvox parent " +
                                  amx + " style 1073741824",
                              "put tarvox window at 0 0 239 179", "play tarvox repeat"}));
        QVERIFY(player.windowState() & Qt::WindowMaximized);
        QVERIFY(player.windowFlags() & Qt::WindowStaysOnTopHint);
        QVERIFY(rig.child<QWidget>("picBlack")->isVisible() && player.surface().isVisible());

        rig.exercise.amx_Click();
        rig.timeline.advance(1000);
        QCOMPARE(player.windowTitle(), "Turn your head (20)");
        rig.ctx.record.BlankX = 0;
        rig.exercise.amx_Click(); // on to the picture
        rig.timeline.advance(1000);
        QCOMPARE(player.windowTitle(), "Hug one arm (20)");
        QVERIFY(!(player.windowState() & Qt::WindowMaximized) &&
                !rig.child<QWidget>("picBlack")->isVisible());
        QVERIFY(player.surface().hasPicture() && player.surface().isVisible());
        QCOMPARE(player.surface().size(), QSize(320, 240));
        QVERIFY(player.rect().contains(rig.child<QWidget>("MMControl1")->geometry()));

        int afterBreak = 0;
        rig.screens.setAfterBreak([&] { ++afterBreak; });
        player.move(player.pos() + QPoint(200, 100)); // by the user
        const QPoint moved = player.pos();
        rig.exercise.amx_DblClick();
        rig.timeline.advance(1000);
        QVERIFY(!player.isVisible() && !(player.windowFlags() & Qt::WindowStaysOnTopHint));
        QCOMPARE(rig.media.commands().last(), "close tarvox");

        // Between breaks the window is given back; the next break shows the player where it was left.
        QTRY_VERIFY(!player.testAttribute(Qt::WA_WState_Created) && afterBreak == 1);
        QVERIFY(!player.surface().hasPicture()); // nor is the last picture kept
        rig.startAndShowTheTitle();
        QCOMPARE(player.pos(), moved);
    }

    // The mouse and the keyboard reach the break: a click on the media skips, Esc on the form asks
    // (here No), Tab reaches the media, where Esc jumps to the last exercise and Enter skips, pause
    // stops the countdown and switches the buttons, and the stop button with Yes ends the break.
    void gesturesFromMouseAndKeyboard() {
        Rig rig;
        rig.startAndShowTheTitle();
        frmX& player = rig.player();
        QTest::mouseClick(&player.surface(), Qt::LeftButton);
        rig.timeline.advance(1000);
        QCOMPARE(player.windowTitle(), "Turn your head (20)");

        QTest::keyClick(&player, Qt::Key_Escape);
        QCOMPARE(rig.messages.shown().size(), size_t(1));
        QVERIFY(rig.ctx.schedule.InExerciseBreak);
        player.surface().setFocus();
        QTest::keyClick(&player.surface(), Qt::Key_Escape); // the last exercise: the next tick wraps
        rig.timeline.advance(1000);
        QCOMPARE(player.windowTitle(), "Turn your head (20)");
        QCOMPARE(rig.messages.shown().size(), size_t(1));
        QTest::keyClick(&player.surface(), Qt::Key_Return);
        rig.timeline.advance(1000);
        QCOMPARE(player.windowTitle(), "Hug one arm (20)");

        auto* pause = rig.child<QToolButton>("Pause");
        auto* play = rig.child<QToolButton>("Play");
        pause->click();
        rig.timeline.advance(5000);
        QCOMPARE(player.windowTitle(), "Hug one arm (20)");
        QVERIFY(!pause->isEnabled() && play->isEnabled() && !rig.child<QToolButton>("Next")->isEnabled());
        play->click();
        rig.timeline.advance(1000);
        QCOMPARE(player.windowTitle(), "Hug one arm (19)");

        rig.messages.answerNext(MessageBox::Answer::Yes);
        rig.child<QToolButton>("Stop")->click();
        rig.timeline.advance(1000);
        QVERIFY(!rig.ctx.schedule.InExerciseBreak && !player.isVisible());
    }

    // The prompt comes up on top without taking the keyboard, showing the last postponement; Later
    // saves the typed minutes (at most 120) and closes it, which lets the exercise countdown run again;
    // Exercise Now starts the break.
    void thePromptOffersABreak() {
        Rig rig;
        rig.store.model().setValue("Exercise", "ProcrastinateM", "10");
        rig.ctx.schedule.ExercisePromptPending = true;
        rig.screens.showExercisePrompt();
        QPointer<frmChkExercise> prompt = rig.screens.prompt();
        QVERIFY(prompt && prompt->isVisible() && prompt->windowTitle() == "Exercise...");
        QVERIFY(prompt->testAttribute(Qt::WA_ShowWithoutActivating) &&
                (prompt->windowFlags() & Qt::WindowStaysOnTopHint));
        auto* minutes = prompt->findChild<QComboBox*>("cmbMinutes");
        QCOMPARE(minutes->currentText(), "10");
        minutes->setEditText("999");
        prompt->findChild<QPushButton*>("cmdWait")->click();
        QTRY_VERIFY(!prompt);
        QCOMPARE(rig.store.model().value("Exercise", "ProcrastinateM"), std::optional<QString>("120"));
        QVERIFY(!rig.ctx.schedule.ExercisePromptPending && rig.ctx.schedule.MinutesToExercise == 120);

        rig.screens.showExercisePrompt();
        prompt = rig.screens.prompt();
        prompt->findChild<QPushButton*>("cmdOK")->click();
        QTRY_VERIFY(!prompt);
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
