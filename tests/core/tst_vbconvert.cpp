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
        const auto shown = [](const QString& text, std::int32_t result) {
            return QStringLiteral("\"%1\" -> %2").arg(text).arg(result);
        };
        // Fractions round half to even.
        // clang-format off
        const std::pair<QString, std::int32_t> numbers[] = {
            {"15", 15}, {" 15 ", 15}, {"\t7", 7}, {"+3", 3}, {"-1", -1}, {"007", 7}, {"2.5", 2}, {"3.5", 4},
            {"-2.5", -2}, {"2.5000001", 3}, {"2.4999", 2}, {".5", 0}, {"5.", 5}, {"2147483647", 2147483647},
            {"-2147483648", -2147483647 - 1}, {"2147483647.4", 2147483647}, {"2147483646.5", 2147483646},
            {"&H1F", 31}, {"&hff", 255}, {"&HFFFFFFFF", -1}, {"&H80000000", -2147483647 - 1}};
        // clang-format on
        for (const auto& [text, expected] : numbers)
            QCOMPARE(shown(text, vb::toLong(text)), shown(text, expected));

        // Not numbers, and numbers that do not fit: the error raised.
        const std::pair<QStringList, std::int32_t> rejected[] = {
            {{"abc", "", "   ", "1e5x", "1e5", "1,000", "1.2.3", "-", "1 2", "&H", "&HFG"},
             vberr::TypeMismatch},
            {{"99999999999", "2147483648", "-2147483649", "2147483647.5", QString(400, QLatin1Char('9')),
              "&H100000000"},
             vberr::Overflow}};
        for (const auto& [texts, error] : rejected)
            for (const QString& text : texts)
                QCOMPARE(shown(text, errorOf([&] { vb::toLong(text); })), shown(text, error));
    }

    void integerAndDoubleConversions() {
        QCOMPARE(vb::toInteger(QStringLiteral("32767")), std::int16_t(32767));
        QCOMPARE(vb::toInteger(QStringLiteral("-32768")), std::int16_t(-32768));
        QCOMPARE(errorOf([] { vb::toInteger(QStringLiteral("32768")); }), vberr::Overflow);
        QCOMPARE(vb::toLong(0.5), 0);
        QCOMPARE(vb::toLong(1.5), 2);
        QCOMPARE(vb::toLong(50.5), 50);
        QCOMPARE(vb::toLong(-0.5), 0);
        QCOMPARE(errorOf([] { vb::toLong(2147483647.5); }), vberr::Overflow);
        QCOMPARE(errorOf([] { vb::toLong(std::nan("")); }), vberr::Overflow);
        QCOMPARE(vb::toInteger(32766.5), std::int16_t(32766));
        QCOMPARE(errorOf([] { vb::toInteger(32767.5); }), vberr::Overflow);
    }

    void checkedArithmetic() {
        const std::int32_t max32 = std::numeric_limits<std::int32_t>::max();
        const std::int32_t min32 = std::numeric_limits<std::int32_t>::min();
        QCOMPARE(checked::add(max32 - 1, 1), max32);
        QCOMPARE(errorOf([&] { checked::add(max32, 1); }), vberr::Overflow);
        QCOMPARE(checked::sub(min32 + 1, 1), min32);
        QCOMPARE(errorOf([&] { checked::sub(min32, 1); }), vberr::Overflow);
        QCOMPARE(checked::mul(2147483, 1000), 2147483000);
        QCOMPARE(errorOf([] { checked::mul(2147484, 1000); }), vberr::Overflow);
        QCOMPARE(errorOf([] { checked::idiv(7, 0); }), vberr::DivisionByZero);
        QCOMPARE(errorOf([&] { checked::idiv(min32, -1); }), vberr::Overflow);
        QCOMPARE(checked::idiv(-7, 2), -3);

        const std::int16_t max16 = 32767;
        QCOMPARE(errorOf([&] { checked::add<std::int16_t>(max16, 1); }), vberr::Overflow);
        QCOMPARE(checked::mul<std::int16_t>(181, 181), std::int16_t(32761));
        QCOMPARE(errorOf([] { checked::mul<std::int16_t>(182, 181); }), vberr::Overflow);
        QCOMPARE(errorOf([] { checked::toInt16(-32769); }), vberr::Overflow);
    }

    void errorReports() {
        const RuntimeError overflow(vberr::Overflow);
        QCOMPARE(overflow.report(), "Run-time error '6':\n\nOverflow");
        const RuntimeError mismatch(vberr::TypeMismatch, {}, {}, "The setting \"x\" holds \"y\".");
        QCOMPARE(mismatch.report(),
                 "Run-time error '13':\n\nType mismatch\n\nThe setting \"x\" holds \"y\".");
        // Object errors show their signed number and the hexadecimal pattern.
        const RuntimeError bar(vberr::objectError(3), "Max property must be greater than Min.",
                               "CProgressBar.Max");
        QCOMPARE(bar.number(), -2147221501);
        QVERIFY(bar.report().startsWith("Run-time error '-2147221501 (80040003)':"));
        QCOMPARE(bar.source(), "CProgressBar.Max");
    }
};

QTEST_GUILESS_MAIN(TestVbConvert)
#include "tst_vbconvert.moc"
