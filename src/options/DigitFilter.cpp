#include "options/DigitFilter.h"

namespace tarvo {

std::int16_t CheckNumText(std::int16_t KeyAscii, const QString& text, bool hasSelection, std::int32_t Min,
                          std::int32_t Max) {
    constexpr std::int16_t kBackspace = 8;
    if (KeyAscii == kBackspace)
        return KeyAscii;
    if (KeyAscii < '0' || KeyAscii > '9')
        return 0;
    if (hasSelection || text.isEmpty())
        return KeyAscii;
    // The field's number is read as far as it is digits (a pasted text may hold anything), rendered
    // back and the digit appended; a number too long to matter is simply past every bound.
    qsizetype digits = 0;
    while (digits < text.size() && text[digits].isDigit() && text[digits].unicode() < 128)
        ++digits;
    const qint64 current = text.left(digits).toLongLong();
    const QString candidateText = QString::number(current) + QChar(KeyAscii);
    bool ok = false;
    const qint64 candidate = candidateText.toLongLong(&ok);
    if (!ok || candidate < Min || candidate > Max)
        return 0;
    return KeyAscii;
}

} // namespace tarvo
