// Conversions and checked arithmetic: the boundaries where a stored setting or a counter stops being
// a number, or stops fitting.
#include "Checked.h"
#include "RuntimeError.h"
#include "VbConvert.h"

#include <QtTest>

using namespace tarvo;

namespace {

// The error number a call raises, or 0 when it raises nothing.
template <typename F>
std::int32_t errorOf(F&& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

} // namespace

class TestVbConvert : public QObject {
    Q_OBJECT

private slots:
    void toLongAcceptsNumbers_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("expected");
        QTest::newRow("plain") << "15" << 15;
        QTest::newRow("blanks around") << " 15 " << 15;
        QTest::newRow("tab") << "\t7" << 7;
        QTest::newRow("plus") << "+3" << 3;
        QTest::newRow("minus one") << "-1" << -1;
        QTest::newRow("leading zeros") << "007" << 7;
        QTest::newRow("half to even down") << "2.5" << 2;
        QTest::newRow("half to even up") << "3.5" << 4;
        QTest::newRow("negative half") << "-2.5" << -2;
        QTest::newRow("just above half") << "2.5000001" << 3;
        QTest::newRow("below half") << "2.4999" << 2;
        QTest::newRow("point only fraction") << ".5" << 0;
        QTest::newRow("trailing point") << "5." << 5;
        QTest::newRow("max") << "2147483647" << 2147483647;
        QTest::newRow("min") << "-2147483648" << int(-2147483647 - 1);
        QTest::newRow("max by rounding down") << "2147483647.4" << 2147483647;
        QTest::newRow("even rounding at max-1") << "2147483646.5" << 2147483646;
        QTest::newRow("hex") << "&H1F" << 31;
        QTest::newRow("hex lower") << "&hff" << 255;
        QTest::newRow("hex all ones") << "&HFFFFFFFF" << -1;
        QTest::newRow("hex sign bit") << "&H80000000" << int(-2147483647 - 1);
    }
    void toLongAcceptsNumbers() {
        QFETCH(QString, text);
        QFETCH(int, expected);
        QCOMPARE(vb::toLong(text), expected);
    }

    void toLongRejects_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("error");
        QTest::newRow("letters") << "abc" << int(vberr::TypeMismatch);
        QTest::newRow("empty") << "" << int(vberr::TypeMismatch);
        QTest::newRow("blanks only") << "   " << int(vberr::TypeMismatch);
        QTest::newRow("exponent with junk") << "1e5x" << int(vberr::TypeMismatch);
        QTest::newRow("exponent") << "1e5" << int(vberr::TypeMismatch);
        QTest::newRow("thousands") << "1,000" << int(vberr::TypeMismatch);
        QTest::newRow("two points") << "1.2.3" << int(vberr::TypeMismatch);
        QTest::newRow("sign only") << "-" << int(vberr::TypeMismatch);
        QTest::newRow("inner blank") << "1 2" << int(vberr::TypeMismatch);
        QTest::newRow("hex without digits") << "&H" << int(vberr::TypeMismatch);
        QTest::newRow("hex bad digit") << "&HFG" << int(vberr::TypeMismatch);
        QTest::newRow("eleven digits") << "99999999999" << int(vberr::Overflow);
        QTest::newRow("max plus one") << "2147483648" << int(vberr::Overflow);
        QTest::newRow("min minus one") << "-2147483649" << int(vberr::Overflow);
        QTest::newRow("rounds past max") << "2147483647.5" << int(vberr::Overflow);
        QTest::newRow("huge") << QString(400, QLatin1Char('9')) << int(vberr::Overflow);
        QTest::newRow("hex nine digits") << "&H100000000" << int(vberr::Overflow);
    }
    void toLongRejects() {
        QFETCH(QString, text);
        QFETCH(int, error);
        QCOMPARE(errorOf([&] { vb::toLong(text); }), error);
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
        QCOMPARE(overflow.report(), QStringLiteral("Run-time error '6':\n\nOverflow"));
        const RuntimeError mismatch(vberr::TypeMismatch, {}, {},
                                    QStringLiteral("The setting \"x\" holds \"y\"."));
        QCOMPARE(mismatch.report(),
                 QStringLiteral("Run-time error '13':\n\nType mismatch\n\nThe setting \"x\" holds \"y\"."));
        // Object errors show their signed number and the hexadecimal pattern.
        const RuntimeError bar(vberr::objectError(3),
                               QStringLiteral("Max property must be greater than Min."),
                               QStringLiteral("CProgressBar.Max"));
        QCOMPARE(bar.number(), -2147221501);
        QVERIFY(bar.report().startsWith(QStringLiteral("Run-time error '-2147221501 (80040003)':")));
        QCOMPARE(bar.source(), QStringLiteral("CProgressBar.Max"));
    }
};

QTEST_GUILESS_MAIN(TestVbConvert)
#include "tst_vbconvert.moc"
