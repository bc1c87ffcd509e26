#include "options/DigitField.h"

#include "controls/UpDown.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace tarvo {

namespace {
constexpr std::int16_t kBackspace = 8;
constexpr std::int16_t kTab = 9;
constexpr std::int16_t kEnter = 13;
constexpr std::int16_t kEscape = 27;

// The field's number as the digits at its start make it; none is 0.
qlonglong leadingNumber(const QString& text) {
    qsizetype n = 0;
    while (n < text.size() && text[n] >= QLatin1Char('0') && text[n] <= QLatin1Char('9'))
        ++n;
    return QStringView(text).left(n).toLongLong();
}
} // namespace

std::int16_t CheckNumText(std::int16_t keyAscii, const QString& text, bool hasSelection, std::int32_t Min,
                          std::int32_t Max) {
    if (keyAscii == kBackspace)
        return keyAscii;
    if (keyAscii < '0' || keyAscii > '9')
        return 0;
    if (hasSelection || text.isEmpty())
        return keyAscii;
    bool ok = false;
    const qlonglong candidate =
        (QString::number(leadingNumber(text)) + QChar(static_cast<char16_t>(keyAscii))).toLongLong(&ok);
    return ok && candidate >= Min && candidate <= Max ? keyAscii : std::int16_t{0};
}

DigitField::DigitField(QLineEdit& field, UpDown* spinner)
    : QObject(&field)
    , field_(field)
    , spinner_(spinner) {
    field.installEventFilter(this);
}

bool DigitField::eventFilter(QObject* watched, QEvent* event) {
    if (watched != &field_)
        return false;
    if (event->type() == QEvent::FocusIn) {
        // After the click that brought the keyboard here has placed the cursor.
        QMetaObject::invokeMethod(
            this, [this] { field_.selectAll(); }, Qt::QueuedConnection);
        return false;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (spinner_ && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
        key->key() == Qt::Key_Up ? spinner_->stepUp() : spinner_->stepDown();
        return true;
    }
    if (key->text().size() != 1)
        return false;
    const auto code = static_cast<std::int16_t>(key->text().at(0).unicode());
    if (code == kTab || code == kEnter || code == kEscape)
        return false;
    return CheckNumText(code, field_.text(), field_.hasSelectedText(), kMin, kMax) == 0;
}

} // namespace tarvo
