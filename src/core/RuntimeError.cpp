#include "core/RuntimeError.h"

namespace tarvo {

QString standardErrorDescription(std::int32_t number) {
    switch (number) {
    case vberr::InvalidCall:
        return QStringLiteral("Invalid procedure call or argument");
    case vberr::Overflow:
        return QStringLiteral("Overflow");
    case vberr::OutOfMemory:
        return QStringLiteral("Out of memory");
    case vberr::SubscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case vberr::DivisionByZero:
        return QStringLiteral("Division by zero");
    case vberr::TypeMismatch:
        return QStringLiteral("Type mismatch");
    case vberr::InternalError:
        return QStringLiteral("Internal error");
    default:
        return {};
    }
}

RuntimeError::RuntimeError(std::int32_t number, QString description, QString source, QString context)
    : number_(number)
    , description_(description.isEmpty() ? standardErrorDescription(number) : std::move(description))
    , source_(std::move(source))
    , context_(std::move(context)) {
    what_ = report().toStdString();
}

QString RuntimeError::numberText() const {
    if (number_ >= 0)
        return QString::number(number_);
    return QStringLiteral("%1 (%2)")
        .arg(number_)
        .arg(static_cast<std::uint32_t>(number_), 8, 16, QLatin1Char('0'))
        .toUpper();
}

QString RuntimeError::report() const {
    QString text = QStringLiteral("Run-time error '%1':\n\n%2").arg(numberText(), description_);
    if (!context_.isEmpty())
        text += QStringLiteral("\n\n") + context_;
    return text;
}

void raiseOverflow() {
    throw RuntimeError(vberr::Overflow);
}

void raiseTypeMismatch(const QString& context) {
    throw RuntimeError(vberr::TypeMismatch, {}, {}, context);
}

} // namespace tarvo
