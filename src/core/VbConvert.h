#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>

// The one place where text and floating-point values become whole numbers. The rules are those of
// the original runtime's CLng/CInt, narrowed to what the stored settings can hold:
//   - surrounding blanks (spaces and tabs) are ignored;
//   - an optional sign, then decimal digits with an optional fraction ("2.5", "5.", ".5");
//     the fraction is rounded half to even ("2.5" is 2, "3.5" is 4);
//   - or "&H" followed by up to eight hex digits, read as a 32-bit two's-complement pattern
//     ("&HFFFFFFFF" is -1);
//   - anything else (empty text, "1e5", "1,000", "abc") is error 13, Type mismatch;
//   - a number outside the target range is error 6, Overflow.
namespace tarvo::vb {

std::int32_t toLong(QStringView text);
std::int16_t toInteger(QStringView text);

// CLng/CInt of a double: rounded half to even, then range-checked (error 6).
std::int32_t toLong(double value);
std::int16_t toInteger(double value);

// Banker's rounding, as the runtime rounds every floating-point to whole-number conversion.
double roundHalfEven(double value);

// The decimal text of a whole number, without blanks or leading zeros ("15", "-1").
inline QString toText(std::int32_t value) {
    return QString::number(value);
}

} // namespace tarvo::vb
