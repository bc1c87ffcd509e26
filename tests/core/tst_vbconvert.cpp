// Conversions and checked arithmetic: the boundaries where a stored setting or a counter stops being
// a number, or stops fitting.
#include "core/Checked.h"
#include "core/RuntimeError.h"
#include "core/VbConvert.h"
#include "support/Raised.h"

#include <QtTest>

using namespace tarvo;

namespace {

// The error number a call raises, or 0 when it raises nothing.
template <typename F>
std::int32_t errorOf(F&& f) {
    const auto e = raised<RuntimeError>(f);
    return e ? e->number() : 0;
}

} // namespace

class TestVbConvert : public QObject {
    Q_OBJECT

private slots:
    void toLongBoundaries() {
        // Fractions round half to even.
        // clang-format off
        const std::pair<QString, std::int32_t> numbers[] = {
            {"15", 15}, {" 15 ", 15}, {"\t7", 7}, {"+3", 3}, {"-1", -1}, {"007", 7}, {"2.5", 2}, {"3.5", 4},
            {"-2.5", -2}, {"2.5000001", 3}, {"2.4999", 2}, {".5", 0}, {"5.", 5}, {"2147483647", 2147483647},
            {"-2147483648", -2147483647 - 1}, {"2147483647.4", 2147483647}, {"2147483646.5", 2147483646},
            {"&H1F", 31}, {"&hff", 255}, {"&HFFFFFFFF", -1}, {"&H80000000", -2147483647 - 1}};
        // clang-format on
        for (const auto& [text, expected] : numbers)
            QCOMPARE(std::pair(text, vb::toLong(text)), std::pair(text, expected));

        // Not numbers, and numbers that do not fit: the error raised.
        const std::pair<QStringList, std::int32_t> rejected[] = {
            {{"abc", "", "   ", "1e5x", "1e5", "1,000", "1.2.3", "-", "1 2", "&H", "&HFG"},
             vberr::TypeMismatch},
            {{"99999999999", "2147483648", "-2147483649", "2147483647.5", QString(400, QLatin1Char('9')),
              "&H100000000"},
             vberr::Overflow}};
        for (const auto& [texts, error] : rejected)
            for (const QString& text : texts)
                QCOMPARE(std::pair(text, errorOf([&] { vb::toLong(text); })), std::pair(text, error));
    }

    // Doubles round half to even; an Integer is 16 bits; counters never wrap.
    void doublesIntegersAndCheckedArithmetic() {
        const std::int32_t max32 = std::numeric_limits<std::int32_t>::max();
        const std::int32_t min32 = std::numeric_limits<std::int32_t>::min();
        QCOMPARE(
            (QList<std::int32_t>{vb::toLong(0.5), vb::toLong(1.5), vb::toLong(50.5), vb::toLong(-0.5),
                                 vb::toInteger(32766.5), vb::toInteger(QStringLiteral("32767")),
                                 vb::toInteger(QStringLiteral("-32768")), checked::add(max32 - 1, 1),
                                 checked::sub(min32 + 1, 1), checked::mul(2147483, 1000),
                                 checked::idiv(-7, 2), checked::mul<std::int16_t>(181, 181)}),
            (QList<std::int32_t>{0, 2, 50, 0, 32766, 32767, -32768, max32, min32, 2147483000, -3, 32761}));
        QCOMPARE((QList<std::int32_t>{
                     errorOf([] { vb::toLong(2147483647.5); }), errorOf([] { vb::toLong(std::nan("")); }),
                     errorOf([] { vb::toInteger(32767.5); }),
                     errorOf([] { vb::toInteger(QStringLiteral("32768")); }),
                     errorOf([&] { checked::add(max32, 1); }), errorOf([&] { checked::sub(min32, 1); }),
                     errorOf([] { checked::mul(2147484, 1000); }), errorOf([&] { checked::idiv(min32, -1); }),
                     errorOf([] { checked::add<std::int16_t>(32767, 1); }),
                     errorOf([] { checked::mul<std::int16_t>(182, 181); }),
                     errorOf([] { checked::toInt16(-32769); })}),
                 QList<std::int32_t>(11, vberr::Overflow));
        QCOMPARE(errorOf([] { checked::idiv(7, 0); }), vberr::DivisionByZero);
    }

    void errorReports() {
        // A bad setting's report, with the setting after the description: tst_settings, tst_regedit.
        QCOMPARE(RuntimeError(vberr::Overflow).report(), "Run-time error '6':\n\nOverflow");
        // Object errors show their signed number and the hexadecimal pattern.
        const RuntimeError bar(vberr::objectError(3), "Max property must be greater than Min.",
                               "CProgressBar.Max");
        QCOMPARE(bar.number(), -2147221501);
        QVERIFY(bar.report().startsWith("Run-time error '-2147221501 (80040003)':"));
    }
};

QTEST_GUILESS_MAIN(TestVbConvert)
#include "tst_vbconvert.moc"
