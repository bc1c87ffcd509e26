// The countdown bar, checked on what its canvas shows: columns counted by colour in the retained image.
#include "CProgressBar.h" // first, to show that it stands on its own
#include "PictureBox.h"
#include "RuntimeError.h"

#include <QLabel>
#include <QtTest>

#include <functional>

using namespace tarvo;

namespace {

constexpr OleColor Red = 0x000000FFu; // 0x00BBGGRR, drawn as qRgb(255, 0, 0)
constexpr OleColor Blue = 0x00FF0000u;

// The number of leading columns in `lit` when the top `rows` rows (all if -1) show such a run followed
// only by `unlit` columns; -1 for anything else.
int litColumns(const PictureBox& canvas, OleColor lit, OleColor unlit, int rows = -1) {
    const QImage image = canvas.image();
    const QRgb on = resolveOleColor(lit, canvas.palette()).rgb();
    const QRgb off = resolveOleColor(unlit, canvas.palette()).rgb();
    const auto columnIs = [&](int x, QRgb colour) {
        for (int y = 0; y < (rows < 0 ? image.height() : rows); ++y)
            if (image.pixel(x, y) != colour)
                return false;
        return true;
    };
    int count = 0;
    while (count < image.width() && columnIs(count, on))
        ++count;
    for (int x = count; x < image.width(); ++x)
        if (!columnIs(x, off))
            return -1;
    return count;
}

void expectError(const std::function<void()>& action, std::int32_t number, const char* description,
                 const char* source = "") {
    try {
        action();
        QFAIL("no error raised");
    } catch (const RuntimeError& e) {
        QCOMPARE(e.number(), number);
        QCOMPARE(e.description(), QLatin1String(description));
        QCOMPARE(e.source(), QLatin1String(source));
    }
}

// A red-on-blue bar on a borderless canvas.
struct Fixture {
    explicit Fixture(int width, int height = 10) {
        canvas.resize(width, height);
        bar.setForeColor(Red);
        bar.setBackColor(Blue);
        bar.setCanvas(&canvas);
    }
    int lit(int rows = -1) const { return litColumns(canvas, bar.ForeColor(), bar.BackColor(), rows); }

    PictureBox canvas;
    CProgressBar bar;
};

} // namespace

class TestCProgressBar : public QObject {
    Q_OBJECT

private slots:
    void pictureBoxKeepsWhatWasDrawn() {
        PictureBox box;
        box.resize(10, 6);
        box.setBackColor(Blue);
        box.Cls();
        box.setForeColor(Red);
        box.LineBF(3, 4, 1, 2); // corners in any order, both filled: columns 1-3 of rows 2-4
        box.setBackColor(0x0000FF00u);
        box.resize(14, 8); // grows: the drawing stays, new area takes the back colour
        const QImage image = box.image();
        QCOMPARE(image.pixel(1, 2), qRgb(255, 0, 0));
        QCOMPARE(image.pixel(3, 4), qRgb(255, 0, 0));
        QCOMPARE(image.pixel(4, 4), qRgb(0, 0, 255));
        QCOMPARE(image.pixel(13, 7), qRgb(0, 255, 0));
    }

    void valueIsClampedAndBadRangesAreRefused() {
        Fixture f(100);
        f.bar.setValue(105);
        QCOMPARE(f.bar.Value(), 100);
        QCOMPARE(f.lit(), 100);
        f.bar.setValue(-1);
        QCOMPARE(f.bar.Value(), 0);
        QCOMPARE(f.lit(), 0);

        f.bar.setValue(50);
        expectError([&] { f.bar.setMax(0); }, vberr::objectError(3), "Max property must be greater than Min.",
                    "CProgressBar.Max");
        expectError([&] { f.bar.setMin(100); }, vberr::objectError(2), "Min property must be less than Max.",
                    "CProgressBar.Min");
        QCOMPARE(f.bar.Min(), 0);
        QCOMPARE(f.bar.Max(), 100);
        QCOMPARE(f.lit(), 50);

        f.bar.setMax(40); // Value stays beyond the new Max: the whole bar lights
        QCOMPARE(f.bar.Value(), 50);
        QCOMPARE(f.lit(), 100);

        f.bar.setMin(-2'000'000'000); // a range wider than 32 bits overflows when drawn
        expectError([&] { f.bar.setMax(2'000'000'000); }, vberr::Overflow, "Overflow");
    }

    void canvasMustBeAPictureBox() {
        CProgressBar bar;
        bar.setValue(30); // without a canvas: stored, nothing else happens
        bar.Resize();
        bar.ResizeEx();
        QCOMPARE(bar.Value(), 30);

        PictureBox canvas; // system colours follow its palette
        QPalette palette;
        palette.setColor(QPalette::Highlight, QColor(10, 20, 30));
        palette.setColor(QPalette::Button, QColor(200, 210, 220));
        canvas.setPalette(palette);
        canvas.resize(100, 4);
        bar.setCanvas(&canvas);
        QCOMPARE(canvas.image().pixel(29, 3), qRgb(10, 20, 30));
        QCOMPARE(canvas.image().pixel(30, 0), qRgb(200, 210, 220)); // 30 lit
        QCOMPARE(canvas.ForeColor(), vbcolor::ButtonFace);          // drawing leaves it on the unlit colour

        QLabel label;
        for (QObject* wrong : {static_cast<QObject*>(&label), static_cast<QObject*>(nullptr)})
            expectError([&] { bar.setCanvas(wrong); }, vberr::objectError(1),
                        "Canvas property must be of type PictureBox.", "CProgressBar.Canvas");
        QCOMPARE(bar.Canvas(), &canvas);
        bar.setValue(60);
        QCOMPARE(litColumns(canvas, vbcolor::Highlight, vbcolor::ButtonFace), 60);

        canvas.resize(40000, 1); // more columns than a 16-bit block count holds
        expectError([&] { bar.Resize(); }, vberr::Overflow, "Overflow");
    }

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

        Fixture g(101);
        g.bar.setMax(4);
        g.bar.Resize(); // 102 blocks
        g.bar.setValue(1);
        QCOMPARE(g.lit(), 26); // 25.5
    }

    void resizeExLeavesOneBlockPerColumn() {
        PictureBox canvas;
        canvas.setFrameStyle(QFrame::Box | QFrame::Plain);
        canvas.setLineWidth(3);
        canvas.resize(106, 10);
        CProgressBar bar;
        bar.setCanvas(&canvas);
        bar.setValue(70);
        const auto lit = [&] { return litColumns(canvas, vbcolor::Highlight, vbcolor::ButtonFace); };
        QCOMPARE(lit(), 70);
        bar.Resize(); // one column more than the canvas is wide: 70.7
        QCOMPARE(lit(), 71);
        bar.ResizeEx();
        QCOMPARE(lit(), 70);
        QCOMPARE(canvas.Width(), 106);

        // An owner keeps the layout in step through the canvas's Resize signal.
        QObject::connect(&canvas, &PictureBox::Resize, &canvas, [&] { bar.ResizeEx(); });
        canvas.show();
        canvas.resize(156, 10);
        QCOMPARE(canvas.Width(), 156);
        QCOMPARE(lit(), 105);
    }

    void propertyChangesRedrawWithoutClearing() {
        Fixture f(100, 10);
        f.canvas.resize(100, 20); // grown without the bar being told; mark the new area
        f.canvas.setForeColor(0x0000FF00u);
        f.canvas.LineBF(0, 15, 99, 19);
        const auto markKept = [&] { return f.canvas.image().pixel(50, 17) == qRgb(0, 255, 0); };

        f.bar.setValue(40);
        f.bar.setMax(50);
        f.bar.setForeColor(0x00FFFFFFu);
        f.bar.Refresh();
        QCOMPARE(f.lit(10), 80);
        QVERIFY(markKept());
        f.bar.Refresh(true);
        QVERIFY(!markKept());
        f.bar.Resize(); // now the full height: 80.8
        QCOMPARE(f.lit(), 81);
    }
};

QTEST_MAIN(TestCProgressBar)
#include "tst_cprogressbar.moc"
