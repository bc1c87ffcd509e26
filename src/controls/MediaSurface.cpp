#include "controls/MediaSurface.h"

#include <QImageReader>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tarvo {

MediaSurface::MediaSurface(QWidget* parent)
    : QWidget(parent) {
    setAutoFillBackground(true);
    QPalette p = palette();
    p.setColor(QPalette::Window, Qt::black);
    setPalette(p);
    // Reached with Tab; a click skips to the next exercise without taking the keyboard from the buttons,
    // so that Esc keeps asking whether to quit.
    setFocusPolicy(Qt::TabFocus);
}

bool MediaSurface::loadPicture(const QString& file) {
    // Exercise pictures are BMP files, which Qt reads by itself. Left to guess the format, the reader
    // would load every image format plugin installed (SVG, JPEG, GIF...) to ask each, and they would
    // stay for the rest of the run.
    QImageReader reader(file, "bmp");
    reader.setAutoDetectImageFormat(false);
    const QImage image = reader.read();
    if (image.isNull()) {
        clearPicture();
        return false;
    }
    picture_ = QPixmap::fromImage(image);
    if (autoSize_)
        resize(picture_.size());
    updateGeometry();
    update();
    return true;
}

void MediaSurface::clearPicture() {
    picture_ = QPixmap();
    update();
}

unsigned long long MediaSurface::handle() {
    return static_cast<unsigned long long>(winId());
}

QSize MediaSurface::sizeHint() const {
    return autoSize_ && !picture_.isNull() ? picture_.size() : size();
}

void MediaSurface::paintEvent(QPaintEvent*) {
    if (picture_.isNull())
        return;
    QPainter(this).drawPixmap(0, 0, picture_);
}

void MediaSurface::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()) && listener_)
        listener_->surfaceClick();
    QWidget::mouseReleaseEvent(event);
}

void MediaSurface::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && listener_)
        listener_->surfaceDblClick();
    QWidget::mouseDoubleClickEvent(event);
}

void MediaSurface::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    int keyAscii = text.size() == 1 ? text.front().unicode() : 0;
    if (event->key() == Qt::Key_Escape)
        keyAscii = 27;
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        keyAscii = 13;
    if (keyAscii != 0 && listener_)
        listener_->surfaceKeyPress(keyAscii);
    if (keyAscii == 0)
        event->accept();
    else
        QWidget::keyPressEvent(event);
}

} // namespace tarvo
