// The countdown bar, checked on what its canvas shows: columns counted by colour in the retained image.
#include "core/RuntimeError.h"
#include "micropause/CProgressBar.h"
#include "micropause/PictureBox.h"
#include "support/Raised.h"

#include <QLabel>
#include <QPainter>
#include <QtTest>

#include <functional>

using namespace tarvo;

namespace {

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

class TestCProgressBar : public QObject {
    Q_OBJECT

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

QTEST_MAIN(TestCProgressBar)
#include "tst_cprogressbar.moc"
