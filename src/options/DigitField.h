#pragma once

#include <QObject>
#include <QString>

#include <cstdint>

class QLineEdit;

namespace tarvo {

class UpDown;

// The key filter of the options dialog's number fields. Given the typed character's code, the field's
// text and whether part of it is selected, returns the code to let through or 0 to swallow it:
// Backspace always passes, anything but a digit never; a digit passes unchecked over a selection or
// into an empty field, and otherwise only when the number it makes stays within Min … Max.
std::int16_t CheckNumText(std::int16_t keyAscii, const QString& text, bool hasSelection, std::int32_t Min,
                          std::int32_t Max);

// Makes a text field a number field: typed characters go through CheckNumText (1 … 999), the whole
// text is selected when the field gets the keyboard so that the first digit replaces it, and the up
// and down arrow keys work the spinner beside it. Enter, Esc and Tab stay with the dialog. The
// filter belongs to the field.
class DigitField : public QObject {
    Q_OBJECT

public:
    static constexpr std::int32_t kMin = 1;
    static constexpr std::int32_t kMax = 999;

    DigitField(QLineEdit& field, UpDown* spinner);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit& field_;
    UpDown* spinner_;
};

} // namespace tarvo
