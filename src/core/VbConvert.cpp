#include "core/VbConvert.h"

#include "core/Checked.h"
#include "core/RuntimeError.h"

#include <cmath>
#include <limits>

namespace tarvo::vb {

namespace {

bool isBlank(QChar c) {
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

QStringView trimBlanks(QStringView t) {
    while (!t.isEmpty() && isBlank(t.front()))
        t = t.mid(1);
    while (!t.isEmpty() && isBlank(t.back()))
        t.chop(1);
    return t;
}

int hexDigit(QChar c) {
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

bool isDigit(QChar c) {
    return c.unicode() >= u'0' && c.unicode() <= u'9';
}

std::int32_t parseHex(QStringView digits) {
    if (digits.isEmpty())
        raiseTypeMismatch();
    std::uint64_t v = 0;
    for (QChar c : digits) {
        const int d = hexDigit(c);
        if (d < 0)
            raiseTypeMismatch();
        v = v * 16 + static_cast<std::uint64_t>(d);
        if (v > 0xFFFFFFFFull)
            raiseOverflow();
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(v));
}

// Parses [sign] digits [. digits] exactly; the value is exact for every integer part that can be
// in range, and the fraction only matters for its comparison with one half.
double parseDecimal(QStringView t) {
    bool negative = false;
    if (!t.isEmpty() && (t.front() == QLatin1Char('+') || t.front() == QLatin1Char('-'))) {
        negative = t.front() == QLatin1Char('-');
        t = t.mid(1);
    }
    const qsizetype point = t.indexOf(QLatin1Char('.'));
    const QStringView whole = point < 0 ? t : t.left(point);
    const QStringView fraction = point < 0 ? QStringView() : t.mid(point + 1);
    if (whole.isEmpty() && fraction.isEmpty())
        raiseTypeMismatch();
    for (QChar c : whole)
        if (!isDigit(c))
            raiseTypeMismatch();
    for (QChar c : fraction)
        if (!isDigit(c))
            raiseTypeMismatch();

    // Integer part: once it passes 2^32 the value is out of every range we convert to; keep it
    // saturated there rather than accumulate a huge double.
    double value = 0;
    for (QChar c : whole) {
        value = value * 10 + (c.unicode() - u'0');
        if (value > 1e10)
            value = 1e10;
    }
    // Fraction: only "below, at or above one half" matters for half-to-even rounding.
    if (!fraction.isEmpty()) {
        const int first = fraction.front().unicode() - u'0';
        bool restNonZero = false;
        for (QChar c : fraction.mid(1))
            restNonZero = restNonZero || c != QLatin1Char('0');
        if (first > 5 || (first == 5 && restNonZero))
            value += 0.75;
        else if (first == 5)
            value += 0.5;
        else if (first > 0 || restNonZero)
            value += 0.25;
    }
    return negative ? -value : value;
}

} // namespace

double roundHalfEven(double value) {
    return std::nearbyint(value);
}

std::int32_t toLong(double value) {
    if (std::isnan(value))
        raiseOverflow();
    const double r = roundHalfEven(value);
    if (r < static_cast<double>(std::numeric_limits<std::int32_t>::min()) ||
        r > static_cast<double>(std::numeric_limits<std::int32_t>::max()))
        raiseOverflow();
    return static_cast<std::int32_t>(r);
}

std::int16_t toInteger(double value) {
    return checked::toInt16(toLong(value));
}

std::int32_t toLong(QStringView text) {
    const QStringView t = trimBlanks(text);
    if (t.size() >= 2 && t[0] == QLatin1Char('&') && (t[1] == QLatin1Char('H') || t[1] == QLatin1Char('h')))
        return parseHex(t.mid(2));
    return toLong(parseDecimal(t));
}

std::int16_t toInteger(QStringView text) {
    return checked::toInt16(toLong(text));
}

} // namespace tarvo::vb
