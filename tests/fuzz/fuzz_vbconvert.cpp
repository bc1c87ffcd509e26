// The runtime's whole-number conversions of stored text and of floating-point values. Each either
// gives a number or raises Overflow or Type mismatch; the numbers must agree with each other.
#include "core/RuntimeError.h"
#include "core/VbConvert.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>

using namespace tarvo;

namespace {

template <typename T>
std::optional<T> converted(const std::function<T()>& call) {
    try {
        return call();
    } catch (const RuntimeError& e) {
        if (e.number() != vberr::Overflow && e.number() != vberr::TypeMismatch)
            std::abort();
        return std::nullopt;
    }
}

void check(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The input as text: an Integer is the Long when that fits in 16 bits, and the decimal text of
    // a Long converts back to it.
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto asLong = converted<std::int32_t>([&] { return vb::toLong(text); });
    const auto asInteger = converted<std::int16_t>([&] { return vb::toInteger(text); });
    check(asInteger ? asLong && *asLong == *asInteger : !asLong || *asLong != std::int16_t(*asLong));
    if (asLong)
        check(vb::toLong(vb::toText(*asLong)) == *asLong);

    // Its first eight bytes as a double: a converted value is the rounded one, at most a half away.
    if (size >= sizeof(double)) {
        double value;
        std::memcpy(&value, data, sizeof value);
        const auto fromDouble = converted<std::int32_t>([&] { return vb::toLong(value); });
        if (fromDouble)
            check(*fromDouble == vb::roundHalfEven(value) && std::fabs(*fromDouble - value) <= 0.5);
        const auto integerFromDouble = converted<std::int16_t>([&] { return vb::toInteger(value); });
        check(!integerFromDouble || (fromDouble && *fromDouble == *integerFromDouble));
    }
    return 0;
}
