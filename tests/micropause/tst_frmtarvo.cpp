// The main form as the engine's view: loaded only while it is shown, its labels show what the
// scheduler wrote meanwhile, the break screen shows and hides its parts, the countdown bar is drawn,
// and Esc and the hint reach the engine. And the countdown bar on its own, checked on what its canvas
// shows: columns counted by colour in the retained image.
#include "core/ProgramInfo.h"
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
#include <QPainter>
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

// Lit columns of the bar's picture: those in the bar's own colour.
int litColumns(const PictureBox* canvas) {
    const QImage image = canvas->image();
    const QRgb lit = resolveOleColor(0x00AABA5Eu, canvas->palette()).rgb();
    int n = 0;
    for (int x = 0; x < image.width(); ++x)
        n += image.pixel(x, image.height() / 2) == lit ? 1 : 0;
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
    }
    template <typename T>
    T* child(const char* name) {
        return main.form()->findChild<T*>(QLatin1String(name));
    }
    QString text(const char* label) { return child<QLabel>(label)->text(); }
};

void expectError(const std::function<void()>& action, std::int32_t number, const char* description,
                 const char* source = "") {
    const auto e = raised<RuntimeError>(action);
    QVERIFY(e && e->number() == number && e->description() == QLatin1String(description) &&
            e->source() == QLatin1String(source));
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

    // The number of leading columns in the fore colour when the top `rows` rows (all if -1) show such a
    // run followed only by columns in the back colour; -1 for anything else.
    int lit(int rows = -1) const {
        const QImage image =
            canvas.image().copy(0, 0, canvas.image().width(), rows < 0 ? canvas.image().height() : rows);
        const QColor on = resolveOleColor(bar.ForeColor(), canvas.palette());
        int count = 0;
        while (count < image.width() && image.pixel(count, 0) == on.rgb())
            ++count;
        QImage expected(image.size(), image.format());
        expected.fill(resolveOleColor(bar.BackColor(), canvas.palette()));
        QPainter(&expected).fillRect(0, 0, count, image.height(), on);
        return image == expected ? count : -1;
    }

    PictureBox canvas;
    CProgressBar bar;
};

} // namespace

class TestFrmTarvo : public QObject {
    Q_OBJECT

private slots:
    // Nothing is loaded until the status panel is shown, with what the engine wrote meanwhile; OK
    // hides it, and it is unloaded.
    void statusPanel() {
        FormRig rig;
        rig.ctx.record.EveryM = 2;
        rig.engine.scheduler().SetTimers();
        rig.timeline.advance(15000); // an idle user
        QVERIFY(!rig.main.form());
        rig.main.showStatus();
        QVERIFY(rig.main.form()->isVisible());
        QCOMPARE(rig.text("lblVersion"), QLatin1String(kVersionText));
        QCOMPARE(rig.text("lblExercise"), "Next Exercise Break: 1 minutes");
        QCOMPARE(rig.text("lblActivity"), "Activity: made up by the test");
        QCOMPARE(rig.text("lblvoluntary"), "Last natural micropause: 09:00");
        QTest::mouseClick(rig.child<QPushButton>("cmdOK"), Qt::LeftButton);
        QTRY_VERIFY(!rig.main.form());
        QCOMPARE(rig.unloads, 1);
    }

    void theBreakScreen() {
        FormRig rig;
        SettingsRecord& settings = rig.ctx.record;
        settings.InterruptFor = 2;
        rig.main.setWarning("Hands off Keyboard && Mouse, look away, relax.");
        rig.engine.scheduler().SetTimers();

        // Blanked: full screen, the panel centred, the hint shown, the bar counting.
        rig.engine.micropause().TarvoMicropause();
        frmTarvo* form = rig.main.form();
        auto* picPB = rig.child<PictureBox>("picPB");
        QCOMPARE(rig.text("lblWarning"), "Hands off Keyboard & Mouse, look away, relax.");
        QVERIFY(form->isVisible() && picPB->isVisible() && rig.child<QLabel>("lblESC")->isVisible() &&
                !rig.child<QPushButton>("cmdOK")->isVisible());
        QVERIFY(form->windowFlags() & Qt::WindowStaysOnTopHint); // full screen: the end-to-end test
        QCOMPARE(rig.child<QWidget>("picBlack")->geometry().center(), form->rect().center());
        rig.timeline.advance(1000);
        QVERIFY(picPB->ScaleWidth() > 0);
        QCOMPARE(litColumns(picPB), (11 * picPB->ScaleWidth() + 10) / 20); // 11 of 20 steps

        // The Esc key reaches the engine, which ends the break on the next tick; then the form goes.
        QTest::keyClick(form, Qt::Key_Escape);
        rig.timeline.advance(100);
        QVERIFY(!form->isVisible());
        QTRY_VERIFY(!rig.main.form());

        // At its own size the panel is the window; a double click on the hint ends the break too.
        settings.Blank = 0;
        rig.engine.micropause().TarvoMicropause();
        form = rig.main.form();
        QCOMPARE(rig.text("lbltarvo"), "Last tarvo micropause: 09:00"); // written while unloaded
        QVERIFY(!(form->windowState() & Qt::WindowFullScreen));
        QCOMPARE(form->size(), rig.child<QWidget>("picBlack")->size());
        QTest::mouseDClick(rig.child<QLabel>("lblESC"), Qt::LeftButton);
        rig.timeline.advance(100);
        QTRY_VERIFY(!rig.main.form());

        // Esc disabled: no hint. Minimising the break screen hides it; the break runs to its end in the
        // form, which stays loaded till then.
        settings.DisableEsc = 1;
        rig.engine.micropause().TarvoMicropause();
        form = rig.main.form();
        QVERIFY(!rig.child<QLabel>("lblESC")->isVisible());
        form->setWindowState(Qt::WindowMinimized);
        QVERIFY(!form->isVisible());
        QTest::qWait(10);
        QCOMPARE(rig.main.form(), form);
        rig.timeline.advance(2000);
        QVERIFY(!rig.ctx.schedule.InMicropause);
        QTRY_VERIFY(!rig.main.form());

        // A break of 0 seconds asks the bar for a maximum of 0, which it refuses with its own error
        // before anything is shown.
        settings.InterruptFor = 0;
        const auto e = raised<RuntimeError>([&] { rig.engine.micropause().TarvoMicropause(); });
        QVERIFY(e && e->number() == vberr::objectError(3));
        QVERIFY(!rig.ctx.schedule.InMicropause && !rig.engine.tSeconds().isEnabled());
        QVERIFY(!rig.main.form()->isVisible());
        QTRY_VERIFY(!rig.main.form());
        QCOMPARE(rig.unloads, 4);
    }

    // A break over the open status panel turns it into the break screen, frameless and on top; a
    // second blanked break while one runs covers the other screen once; a break at its own size does
    // not hold the keyboard.
    void aBreakOverWhatWasOpen() {
        FormRig rig;
        rig.engine.scheduler().SetTimers();
        rig.main.showStatus();
        frmTarvo* form = rig.main.form();
        QVERIFY(QTest::qWaitForWindowExposed(form));
        for (int i = 0; i < 2; ++i)
            rig.engine.micropause().TarvoMicropause();
        QTest::qWait(10);
        QCOMPARE(rig.main.form(), form);
        QVERIFY(form->isVisible() && form->windowFlags().testFlag(Qt::FramelessWindowHint) &&
                form->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QCOMPARE(coversShown(), 1);
        QCOMPARE(QWidget::keyboardGrabber(), form);
        QTest::keyClick(form, Qt::Key_Escape);
        rig.timeline.advance(100);
        QCOMPARE(coversShown(), 0);
        QVERIFY(!QWidget::keyboardGrabber());

        rig.ctx.record.Blank = 0;
        rig.engine.micropause().TarvoMicropause();
        QVERIFY(rig.main.form()->isVisible() && !QWidget::keyboardGrabber());
    }

private slots:
    // Value is clamped to the range; refused settings leave Min, Max, Canvas and the drawing as they were.
    void valueIsClampedAndBadSettingsAreRefused() {
        Fixture f(100);
        for (const auto& [value, clamped] : {std::pair{105, 100}, std::pair{-1, 0}}) {
            f.bar.setValue(value);
            QCOMPARE(f.bar.Value(), clamped);
            QCOMPARE(f.lit(), clamped);
        }

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

        f.bar.setMax(40); // Value stays beyond the new Max: the whole bar lights
        QCOMPARE(f.bar.Value(), 50);
        QCOMPARE(f.lit(), 100);
        f.bar.setMin(-2'000'000'000); // a range wider than 32 bits overflows when drawn
        expectError([&] { f.bar.setMax(2'000'000'000); }, vberr::Overflow, "Overflow");

        Fixture wide(100);
        wide.canvas.resize(40000, 1); // more columns than a 16-bit block count holds
        expectError([&] { wide.bar.Resize(); }, vberr::Overflow, "Overflow");
    }

    // Resize lays out one block more than the canvas has columns inside; ResizeEx drops it and keeps
    // the canvas's outer width, border included.
    void litCountIsValueOverRangeRoundedHalfToEven() {
        Fixture f(100);
        f.bar.setMax(10);
        f.bar.Resize(); // 101 blocks
        f.bar.setValue(5);
        QCOMPARE(f.lit(), 50); // 50.5
        f.bar.ResizeEx();      // 100 blocks
        QCOMPARE(f.lit(), 50);
        f.bar.setMax(120);
        f.bar.setMin(20);
        f.bar.setValue(70);
        QCOMPARE(f.lit(), 70); // Value itself over the range, not Value - Min

        Fixture g(107, 3);
        g.bar.setMax(4);
        g.bar.Resize(); // 102 blocks
        g.bar.setValue(1);
        QCOMPARE(g.lit(), 26); // 25.5
        g.bar.ResizeEx();      // 101 blocks
        QCOMPARE(g.lit(), 25);
        QCOMPARE(g.canvas.Width(), 107);
    }

    // Property changes redraw the bar's own rows only; Refresh(true) clears the canvas first.
    void propertyChangesRedrawWithoutClearing() {
        Fixture f(100);
        f.canvas.resize(100, 20); // grown without the bar being told; mark the new area
        f.canvas.setForeColor(0x0000FF00u);
        f.canvas.LineBF(0, 15, 99, 19);

        f.bar.setValue(40);
        f.bar.setMax(50);
        f.bar.setForeColor(0x00FFFFFFu);
        f.bar.Refresh();
        QCOMPARE(f.lit(10), 80);
        QCOMPARE(f.canvas.image().pixel(50, 17), qRgb(0, 255, 0)); // the mark is kept
        f.bar.Refresh(true);
        QCOMPARE_NE(f.canvas.image().pixel(50, 17), qRgb(0, 255, 0));
        f.bar.Resize(); // now the full height: 80.8
        QCOMPARE(f.lit(), 81);
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
