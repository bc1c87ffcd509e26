#pragma once

#include <QString>

#include <cstdint>
#include <exception>
#include <string>

namespace tarvo {

// Error numbers of the Visual Basic runtime that this program raises.
namespace vberr {
inline constexpr std::int32_t InvalidCall = 5;
inline constexpr std::int32_t Overflow = 6;
inline constexpr std::int32_t OutOfMemory = 7;
inline constexpr std::int32_t SubscriptOutOfRange = 9;
inline constexpr std::int32_t DivisionByZero = 11;
inline constexpr std::int32_t TypeMismatch = 13;
inline constexpr std::int32_t InternalError = 51;
// Components report bad property values in the object-error range, 0x80040000 + n.
inline constexpr std::int32_t ObjectErrorBase = static_cast<std::int32_t>(0x80040000u);
constexpr std::int32_t objectError(std::int32_t n) {
    return ObjectErrorBase + n;
}
} // namespace vberr

// The standard description of a runtime error number ("Overflow" for 6), or an empty text.
QString standardErrorDescription(std::int32_t number);

// A run-time error as the program reports it: a number, a description and the source that raised it.
// `context` optionally says which stored value caused it, so that a user can find and repair it.
class RuntimeError : public std::exception {
public:
    explicit RuntimeError(std::int32_t number, QString description = {}, QString source = {},
                          QString context = {});

    std::int32_t number() const { return number_; }
    const QString& description() const { return description_; }
    const QString& source() const { return source_; }
    const QString& context() const { return context_; }

    // "6" for ordinary errors; "-2147221501 (80040003)" for object errors, as the runtime shows them.
    QString numberText() const;
    // The full report: "Run-time error 'N':", a blank line, the description and, if any, the context.
    QString report() const;

    const char* what() const noexcept override { return what_.c_str(); }

private:
    std::int32_t number_;
    QString description_;
    QString source_;
    QString context_;
    std::string what_;
};

[[noreturn]] void raiseOverflow();
[[noreturn]] void raiseTypeMismatch(const QString& context = {});

} // namespace tarvo
