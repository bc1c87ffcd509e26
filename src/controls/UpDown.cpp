#include "controls/UpDown.h"

#include <QAccessible>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace tarvo {

UpDown::UpDown(QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const int direction : {+1, -1}) {
        auto* b = new QToolButton(this);
        b->setObjectName(QLatin1String(direction > 0 ? "up" : "down"));
        b->setArrowType(direction > 0 ? Qt::UpArrow : Qt::DownArrow);
        b->setAutoRepeat(true);
        // The field has the keyboard; the arrow keys there do the same (see the forms).
        b->setFocusPolicy(Qt::NoFocus);
        b->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
        b->setFixedWidth(style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 2);
        connect(b, &QToolButton::clicked, this, [this, direction] { step(direction); });
        layout->addWidget(b);
        (direction > 0 ? up_ : down_) = b;
    }
    nameArrows(QString());
}

void UpDown::setBuddy(QLineEdit* buddy) {
    buddy_ = buddy;
    // The field's name as assistive technology has it: its own accessible name, else its label's text
    // without the access key's ampersand.
    QAccessibleInterface* field = buddy ? QAccessible::queryAccessibleInterface(buddy) : nullptr;
    nameArrows(field ? field->text(QAccessible::Name) : QString());
}

void UpDown::nameArrows(const QString& field) {
    up_->setAccessibleName(field.isEmpty() ? tr("Increase") : tr("Increase %1").arg(field));
    down_->setAccessibleName(field.isEmpty() ? tr("Decrease") : tr("Decrease %1").arg(field));
}

void UpDown::setRange(std::int32_t min, std::int32_t max) {
    min_ = min;
    max_ = max;
    value_ = std::clamp(value_, min_, max_);
}

void UpDown::step(int direction) {
    bool isNumber = false;
    const qlonglong shown = buddy_ ? buddy_->text().trimmed().toLongLong(&isNumber) : 0;
    const qlonglong from = isNumber ? shown : value_;
    value_ = static_cast<std::int32_t>(std::clamp<qlonglong>(from + direction, min_, max_));
    if (buddy_)
        buddy_->setText(QString::number(value_));
}

} // namespace tarvo
