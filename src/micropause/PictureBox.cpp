#include "micropause/PictureBox.h"

#include <QPainter>
#include <QResizeEvent>

#include <algorithm>
#include <array>
#include <utility>

namespace tarvo {

namespace {

// The classic system colour indexes, 0 to 24, and the palette role that plays the same part on this
// desktop. Window captions and borders have no palette role; they take the nearest one.
constexpr std::array<QPalette::ColorRole, 25> systemColourRoles = {
    QPalette::Button,          // 0 scroll bar
    QPalette::Window,          // 1 desktop
    QPalette::Highlight,       // 2 active caption
    QPalette::Mid,             // 3 inactive caption
    QPalette::Base,            // 4 menu
    QPalette::Base,            // 5 window
    QPalette::Shadow,          // 6 window frame
    QPalette::Text,            // 7 menu text
    QPalette::WindowText,      // 8 window text
    QPalette::HighlightedText, // 9 caption text
    QPalette::Button,          // 10 active border
    QPalette::Button,          // 11 inactive border
    QPalette::Dark,            // 12 application workspace
    QPalette::Highlight,       // 13 highlight
    QPalette::HighlightedText, // 14 highlighted text
    QPalette::Button,          // 15 button face
    QPalette::Dark,            // 16 button shadow
    QPalette::Text,            // 17 grey text (taken from the disabled group)
    QPalette::ButtonText,      // 18 button text
    QPalette::WindowText,      // 19 inactive caption text
    QPalette::Light,           // 20 button highlight
    QPalette::Shadow,          // 21 dark 3-D shadow
    QPalette::Midlight,        // 22 3-D light
    QPalette::ToolTipText,     // 23 tooltip text
    QPalette::ToolTipBase,     // 24 tooltip background
};

constexpr OleColor SystemColourFlag = 0x80000000u;
constexpr OleColor GreyTextIndex = 17;

} // namespace

QColor resolveOleColor(OleColor color, const QPalette& palette) {
    if ((color & SystemColourFlag) == 0)
        return QColor(static_cast<int>(color & 0xFF), static_cast<int>((color >> 8) & 0xFF),
                      static_cast<int>((color >> 16) & 0xFF));
    const OleColor index = color & ~SystemColourFlag;
    if (index >= systemColourRoles.size())
        return QColor(Qt::black);
    const QPalette::ColorGroup group = index == GreyTextIndex ? QPalette::Disabled : QPalette::Active;
    return palette.color(group, systemColourRoles[index]);
}

PictureBox::PictureBox(QWidget* parent)
    : QFrame(parent) {
    // Painting covers the whole client area from the image; nothing needs erasing first.
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PictureBox::setWidth(int outerWidth) {
    resize(outerWidth, height());
}

void PictureBox::Cls() {
    syncImageSize();
    image_.fill(resolved(backColor_));
    update(contentsRect());
}

void PictureBox::LineBF(int x1, int y1, int x2, int y2) {
    syncImageSize();
    const QRect box =
        QRect(QPoint(std::min(x1, x2), std::min(y1, y2)), QPoint(std::max(x1, x2), std::max(y1, y2)))
            .intersected(image_.rect());
    if (box.isEmpty())
        return;
    QPainter painter(&image_);
    painter.fillRect(box, resolved(foreColor_));
    painter.end();
    update(box.translated(contentsRect().topLeft()));
}

QImage PictureBox::image() const {
    syncImageSize();
    return image_;
}

void PictureBox::paintEvent(QPaintEvent* event) {
    syncImageSize();
    {
        QPainter painter(this);
        painter.drawImage(contentsRect().topLeft(), image_);
    }
    QFrame::paintEvent(event); // the frame around it
}

void PictureBox::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    syncImageSize();
    emit Resize();
}

void PictureBox::syncImageSize() const {
    const QSize size = contentsRect().size().expandedTo(QSize(0, 0));
    if (image_.size() == size)
        return;
    QImage grown(size, QImage::Format_RGB32);
    grown.fill(resolved(backColor_));
    if (!grown.isNull() && !image_.isNull()) {
        QPainter painter(&grown);
        painter.drawImage(0, 0, image_);
    }
    image_ = std::move(grown);
}

} // namespace tarvo
