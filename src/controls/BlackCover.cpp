#include "controls/BlackCover.h"

#include <QKeyEvent>
#include <QScreen>

namespace tarvo {

BlackCover::BlackCover(QScreen* screen, Listener& listener)
    : QWidget(nullptr,
              Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint)
    , listener_(listener) {
    setObjectName(QStringLiteral("BlackCover"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    setAutoFillBackground(true);
    QPalette p = palette();
    p.setColor(QPalette::Window, Qt::black);
    setPalette(p);
    setCursor(Qt::BlankCursor);
    setScreen(screen);
    setGeometry(screen->geometry());
}

void BlackCover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        listener_.escapeOnCover();
    else
        QWidget::keyPressEvent(event);
}

} // namespace tarvo
