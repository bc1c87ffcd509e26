// The main form as the engine's view: loaded only while it is shown, its labels show what the
// scheduler wrote meanwhile, the break screen shows and hides its parts, the countdown bar is drawn,
// and Esc and the hint reach the engine. And the countdown bar on its own, checked on what its canvas
// shows: columns counted by colour in the retained image.
#include "core/RuntimeError.h"
#include "engine/BreakEngine.h"
#include "micropause/CProgressBar.h"
#include "micropause/MainForm.h"
#include "micropause/PictureBox.h"
#include "micropause/frmTarvo.h"
#include "support/FakeContext.h"
#include "support/QuietViews.h"
#include "support/Raised.h"

#include <QLabel>
#include <QPushButton>
#include <QTemporaryFile>
#include <QtTest>

#include <functional>

using namespace tarvo;

namespace {

// The black covers shown over the screens other than the break's.
int coversShown() {
    int n = 0;
    for (const QWidget* w : QApplication::topLevelWidgets())
        n += w->inherits("tarvo::BlackCover") && w->isVisible() ? 1 : 0;
    return n;
}

// The main form and its engine on simulated time.
struct FormRig : FakeContext {
    QuietViews elsewhere; // what is heard, and the exercise breaks: the engine's and their own tests
    MainForm main;
    BreakEngine engine{ctx, main, elsewhere, elsewhere};
    int unloads = 0;

    FormRig() {
        main.attach(engine);
        main.setAfterUnload([this] { ++unloads; });
        engine.scheduler().SetTimers();
    }
    template <typename T = QWidget>
    T* child(const char* name) {
        return main.form()->findChild<T*>(QLatin1String(name));
    }
    QString text(const char* label) { return child<QLabel>(label)->text(); }
    void micropause() { engine.micropause().TarvoMicropause(); }
};

void expectError(const std::function<void()>& action, std::int32_t number, const char* description,
                 const char* source = "") {
    const auto e = raised<RuntimeError>(action);
    QVERIFY(e && e->number() == number && e->description() == QLatin1String(description) &&
            e->source() == QLatin1String(source));
}

// The number of leading columns in the colour `on` when the top `rows` rows (all if -1) of the canvas
// show such a run followed only by columns in the colour `off`; -1 for anything else.
int lit(const PictureBox& canvas, OleColor on, OleColor off, int rows = -1) {
    const QImage image = canvas.image();
    const QRgb onRgb = resolveOleColor(on, canvas.palette()).rgb();
    int count = 0;
    while (count < image.width() && image.pixel(count, 0) == onRgb)
        ++count;
    for (int y = 0; y < (rows < 0 ? image.height() : rows); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != (x < count ? onRgb : resolveOleColor(off, canvas.palette()).rgb()))
                return -1;
    return count;
}

// A red-on-blue bar on a canvas with a border `frame` wide.
struct Fixture {
    explicit Fixture(int width, int frame = 0) {
        canvas.setFrameStyle(QFrame::Box | QFrame::Plain);
        canvas.setLineWidth(frame);
        canvas.resize(width, 10);
        bar.setForeColor(0x000000FFu); // 0x00BBGGRR
        bar.setBackColor(0x00FF0000u);
        bar.setCanvas(&canvas);
    }
    int lit(int rows = -1) const { return ::lit(canvas, bar.ForeColor(), bar.BackColor(), rows); }

    PictureBox canvas;
    CProgressBar bar;
};

} // namespace

class TestFrmTarvo : public QObject {
    Q_OBJECT

private slots:
    void theBreakScreen() {
        FormRig rig;
        SettingsRecord& settings = rig.ctx.record;
        settings.InterruptFor = 2;
        rig.main.setWarning("Hands off Keyboard && Mouse, look away, relax.");

        // Blanked: full screen, the panel centred, the hint shown, the bar counting in its colours.
        rig.micropause();
        frmTarvo* form = rig.main.form();
        QCOMPARE(rig.text("lblWarning"), "Hands off Keyboard & Mouse, look away, relax.");
        QVERIFY(form->isVisible() && rig.child("lblESC")->isVisible() && !rig.child("cmdOK")->isVisible());
        QCOMPARE(rig.child("picBlack")->geometry().center(), form->rect().center());
        rig.timeline.advance(1000);
        const auto& picPB = *rig.child<PictureBox>("picPB");
        QVERIFY(picPB.isVisible() && picPB.ScaleWidth() > 0);
        QCOMPARE(lit(picPB, 0x00AABA5Eu, 0x00473D2Du, 1), (11 * picPB.ScaleWidth() + 10) / 20); // 11 of 20

        // The Esc key reaches the engine, which ends the break on the next tick; then the form goes.
        QTest::keyClick(form, Qt::Key_Escape);
        rig.timeline.advance(100);
        QTRY_VERIFY(!rig.main.form()); // hidden, and unloaded

        // At its own size the panel is the window, on top all the same; a double click on the hint
        // ends the break too.
        settings.Blank = 0;
        rig.micropause();
        form = rig.main.form();
        QCOMPARE(rig.text("lbltarvo"), "Last tarvo micropause: 09:00"); // written while unloaded
        QVERIFY(!(form->windowState() & Qt::WindowFullScreen) &&
                form->windowFlags() & Qt::WindowStaysOnTopHint);
        QCOMPARE(form->size(), rig.child("picBlack")->size());
        QTest::mouseDClick(rig.child("lblESC"), Qt::LeftButton);
        rig.timeline.advance(100);
        QTRY_VERIFY(!rig.main.form());

        // Esc disabled: no hint. Minimising the break screen hides it; the break runs to its end in the
        // form, which stays loaded till then.
        settings.DisableEsc = 1;
        rig.micropause();
        form = rig.main.form();
        QVERIFY(!rig.child("lblESC")->isVisible());
        form->setWindowState(Qt::WindowMinimized);
        QTest::qWait(10);
        QVERIFY(rig.main.form() == form && !form->isVisible());
        rig.timeline.advance(2000);
        QVERIFY(!rig.ctx.schedule.InMicropause);
        QTRY_VERIFY(!rig.main.form());

        // A break of 0 seconds asks the bar for a maximum of 0, which it refuses with its own error
        // before anything is shown.
        settings.InterruptFor = 0;
        const auto e = raised<RuntimeError>([&] { rig.micropause(); });
        QVERIFY(e && e->number() == vberr::objectError(3));
        QVERIFY(!rig.ctx.schedule.InMicropause && !rig.engine.tSeconds().isEnabled());
        QTRY_VERIFY(!rig.main.form()); // never shown
    }

    // Nothing is loaded until the status panel is shown, with what the engine wrote meanwhile. A break
    // over it turns it into the break screen, frameless and on top; a second blanked break while one
    // runs covers the other screen once; a break at its own size does not hold the keyboard. OK hides
    // the panel, and it is unloaded.
    void theStatusPanelAndABreakOverIt() {
        FormRig rig;
        rig.ctx.record.EveryM = 2;
        rig.engine.scheduler().SetTimers();
        rig.timeline.advance(15000); // an idle user
        QVERIFY(!rig.main.form());
        rig.main.showStatus();
        frmTarvo* form = rig.main.form();
        QCOMPARE(rig.text("lblExercise"), "Next Exercise Break: 1 minutes");
        QCOMPARE(rig.text("lblActivity"), "Activity: made up by the test");
        QCOMPARE(rig.text("lblvoluntary"), "Last natural micropause: 09:00");
        QVERIFY(QTest::qWaitForWindowExposed(form));
        rig.micropause();
        rig.micropause();
        QTest::qWait(10);
        QVERIFY(rig.main.form() == form && form->isVisible());
        QVERIFY(form->windowFlags().testFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint));
        QCOMPARE(coversShown(), 1);
        QCOMPARE(QWidget::keyboardGrabber(), form);
        QTest::keyClick(form, Qt::Key_Escape);
        rig.timeline.advance(100);
        QVERIFY(coversShown() == 0 && !QWidget::keyboardGrabber());

        rig.ctx.record.Blank = 0;
        rig.micropause();
        QVERIFY(rig.main.form()->isVisible() && !QWidget::keyboardGrabber());
        rig.timeline.advance(15000);
        rig.main.showStatus();
        QTest::mouseClick(rig.child("cmdOK"), Qt::LeftButton);
        QTRY_VERIFY(!rig.main.form());
        QCOMPARE(rig.unloads, 1);
    }

    // Value is clamped to the range; refused settings leave Min, Max, Canvas and the drawing as they
    // were; Value beyond a lowered Max lights the whole bar; more columns than a 16-bit block count
    // holds overflow.
    void valueIsClampedAndBadSettingsAreRefused() {
        Fixture f(100);
        f.bar.setValue(105);
        QCOMPARE(f.lit(), 100);
        f.bar.setValue(-1);
        QCOMPARE(f.lit(), 0);
        f.bar.setValue(50);
        expectError([&] { f.bar.setMax(0); }, vberr::objectError(3), "Max property must be greater than Min.",
                    "CProgressBar.Max");
        expectError([&] { f.bar.setMin(100); }, vberr::objectError(2), "Min property must be less than Max.",
                    "CProgressBar.Min");
        QLabel label;
        for (QObject* wrong : {static_cast<QObject*>(&label), static_cast<QObject*>(nullptr)})
            expectError([&] { f.bar.setCanvas(wrong); }, vberr::objectError(1),
                        "Canvas property must be of type PictureBox.", "CProgressBar.Canvas");
        QVERIFY(f.bar.Min() == 0 && f.bar.Max() == 100 && f.bar.Canvas() == &f.canvas);
        QCOMPARE(f.lit(), 50);
        f.bar.setMax(40);
        QVERIFY(f.bar.Value() == 50 && f.lit() == 100);
        f.canvas.resize(40000, 1);
        expectError([&] { f.bar.ResizeEx(); }, vberr::Overflow, "Overflow");
    }

    // One block per column inside the canvas, its outer width kept, border included; the lit share is
    // Value over the range, rounded half to even. A property change redraws the bar's own rows only,
    // without clearing the canvas first.
    void drawing() {
        Fixture f(100);
        f.bar.setMax(8);
        f.bar.setValue(1);
        QCOMPARE(f.lit(), 12); // 12.5
        f.bar.setValue(3);
        QCOMPARE(f.lit(), 38); // 37.5
        Fixture g(107, 3);
        g.bar.setMax(4);
        g.bar.setValue(1);
        QVERIFY(g.lit() == 25 && g.canvas.Width() == 107); // 101 blocks: 25.25

        f.canvas.resize(100, 20); // grown without the bar being told; mark the new area
        f.canvas.setForeColor(0x0000FF00u);
        f.canvas.LineBF(0, 15, 99, 19);
        f.bar.setForeColor(0x00FFFFFFu);
        QCOMPARE(f.lit(10), 38);
        QCOMPARE(f.canvas.image().pixel(50, 17), qRgb(0, 255, 0)); // the mark is kept
    }
};

// Two screens side by side, so that a blanked break has a screen to cover besides its own.
int main(int argc, char** argv) {
    QTemporaryFile screens;
    if (!screens.open())
        return 1;
    screens.write(R"({"screens": [{"name": "left", "x": 0, "y": 0, "width": 1024, "height": 768},
                                  {"name": "right", "x": 1024, "y": 0, "width": 800, "height": 600}]})");
    screens.flush();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens.fileName()));
    QApplication app(argc, argv);
    TestFrmTarvo test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_frmtarvo.moc"
