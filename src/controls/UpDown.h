#pragma once

#include <QWidget>

#include <cstdint>

class QLineEdit;
class QToolButton;

namespace tarvo {

// An up-down spinner beside a text field of its own choosing (its buddy), as the classic control is:
// the field stays an ordinary text field, so a number past the spinner's bounds can still be typed.
// Up and down take the field's number (the spinner's last value when the field holds none), step it
// by the increment, keep it within Min and Max, and write it back. The arrows are named after the
// buddy as a screen reader announces it ("Increase Interrupt me for"), so set the buddy once the
// field's label points at it.
class UpDown : public QWidget {
    Q_OBJECT

public:
    explicit UpDown(QWidget* parent = nullptr);

    void setBuddy(QLineEdit* buddy);
    void setRange(std::int32_t min, std::int32_t max);
    std::int32_t Min() const { return min_; }
    std::int32_t Max() const { return max_; }
    std::int32_t Value() const { return value_; }

    void stepUp() { step(+1); }
    void stepDown() { step(-1); }

private:
    void step(int direction);
    void nameArrows(const QString& field);

    QToolButton* up_ = nullptr;
    QToolButton* down_ = nullptr;
    QLineEdit* buddy_ = nullptr;
    std::int32_t min_ = 0;
    std::int32_t max_ = 100;
    std::int32_t value_ = 0;
};

} // namespace tarvo
