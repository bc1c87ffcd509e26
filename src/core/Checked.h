#pragma once

#include "core/RuntimeError.h"

#include <concepts>
#include <cstdint>
#include <limits>

// Whole-number arithmetic on the program's counters never wraps: an overflow is run-time error 6,
// exactly as a 16-bit Integer or 32-bit Long of the original runtime behaves.
namespace tarvo::checked {

template <typename T>
concept VbWhole = std::same_as<T, std::int16_t> || std::same_as<T, std::int32_t>;

template <VbWhole T>
T add(T a, T b) {
    T r;
    if (__builtin_add_overflow(a, b, &r))
        raiseOverflow();
    return r;
}

template <VbWhole T>
T sub(T a, T b) {
    T r;
    if (__builtin_sub_overflow(a, b, &r))
        raiseOverflow();
    return r;
}

template <VbWhole T>
T mul(T a, T b) {
    T r;
    if (__builtin_mul_overflow(a, b, &r))
        raiseOverflow();
    return r;
}

// Integer division ("\"): division by zero is error 11, and the one quotient that does not fit
// (the minimum divided by -1) is error 6.
template <VbWhole T>
T idiv(T a, T b) {
    if (b == 0)
        throw RuntimeError(vberr::DivisionByZero);
    if (b == -1 && a == std::numeric_limits<T>::min())
        raiseOverflow();
    return static_cast<T>(a / b);
}

// A 32-bit value narrowed to 16 bits (CInt of a Long).
inline std::int16_t toInt16(std::int32_t v) {
    if (v < INT16_MIN || v > INT16_MAX)
        raiseOverflow();
    return static_cast<std::int16_t>(v);
}

} // namespace tarvo::checked
