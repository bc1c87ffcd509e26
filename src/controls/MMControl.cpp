#include "controls/MMControl.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QToolButton>

namespace tarvo {

namespace {

// The buttons' faces are drawn here rather than taken from the icon theme: a theme's icons come
// through the image format plugins and the SVG renderer, which the program would otherwise never
// load, and which would stay in its memory for the rest of the run after the first break.
QIcon face(MMControl::Button button, const QColor& ink) {
    constexpr int kSide = 16;
    QPixmap pixmap(kSide, kSide);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    const auto triangle = [&](qreal left, qreal right) { // pointing right when left < right
        QPainterPath path;
        path.moveTo(left, 3);
        path.lineTo(right, 8);
        path.lineTo(left, 13);
        path.closeSubpath();
        p.drawPath(path);
    };
    switch (button) {
    case MMControl::Prev:
        p.drawRect(QRectF(2, 3, 2, 10));
        triangle(9, 4);
        triangle(14, 9);
        break;
    case MMControl::Next:
        triangle(2, 7);
        triangle(7, 12);
        p.drawRect(QRectF(12, 3, 2, 10));
        break;
    case MMControl::Play:
        triangle(4, 13);
        break;
    case MMControl::Pause:
        p.drawRect(QRectF(4, 3, 3, 10));
        p.drawRect(QRectF(9, 3, 3, 10));
        break;
    case MMControl::Stop:
        p.drawRect(QRectF(3, 3, 10, 10));
        break;
    }
    return QIcon(pixmap);
}

} // namespace

MMControl::MMControl(QWidget* parent)
    : QWidget(parent) {
    struct Face {
        const char* name;
        const char* tip;
    };
    static const Face faces[] = {{"Prev", "Previous exercise"},
                                 {"Next", "Next exercise"},
                                 {"Play", "Go on with the countdown"},
                                 {"Pause", "Pause the countdown"},
                                 {"Stop", "End the exercise break"}};
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (int i = 0; i < 5; ++i) {
        auto* b = new QToolButton(this);
        b->setObjectName(QLatin1String(faces[i].name));
        b->setIcon(face(static_cast<Button>(i), palette().color(QPalette::ButtonText)));
        b->setToolTip(QLatin1String(faces[i].tip));
        b->setAccessibleName(QLatin1String(faces[i].tip));
        b->setFocusPolicy(Qt::StrongFocus);
        b->setAutoRaise(false);
        connect(b, &QToolButton::clicked, this, [this, i] { clicked(static_cast<Button>(i)); });
        layout->addWidget(b);
        buttons_[static_cast<size_t>(i)] = b;
    }
    layout->addStretch();
}

void MMControl::setButtonEnabled(Button button, bool enabled) {
    buttons_[button]->setEnabled(enabled);
}

bool MMControl::isButtonEnabled(Button button) const {
    return buttons_[button]->isEnabled();
}

void MMControl::clicked(Button button) {
    if (!listener_)
        return;
    bool Cancel = false;
    switch (button) {
    case Prev:
        listener_->MMControl_PrevClick(Cancel);
        break;
    case Next:
        listener_->MMControl_NextClick(Cancel);
        break;
    case Play:
        listener_->MMControl_PlayClick(Cancel);
        break;
    case Pause:
        listener_->MMControl_PauseClick(Cancel);
        break;
    case Stop:
        listener_->MMControl_StopClick(Cancel);
        break;
    }
}

} // namespace tarvo
