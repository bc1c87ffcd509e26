#pragma once

#include <QColor>
#include <QFrame>
#include <QImage>
#include <QPalette>

#include <cstdint>

namespace tarvo {

// A colour in OLE form: 0x00BBGGRR for a plain colour, or, with the top bit set, the index of a
// system colour that follows the desktop's theme (0x8000000D is the selection highlight). The high
// byte's palette flags (0x01, 0x02) have no meaning here and are ignored.
using OleColor = std::uint32_t;

namespace vbcolor {
inline constexpr OleColor Highlight = 0x8000000Du;
inline constexpr OleColor ButtonFace = 0x8000000Fu;
inline constexpr OleColor ButtonText = 0x80000012u;
} // namespace vbcolor

// The colour that `color` stands for. System colour indexes map onto the roles of `palette` that play
// the same part (highlight, button face, window text, ...), taken from its active group (grey text
// from the disabled one), so that a bar drawn while its window is inactive looks the same as one
// drawn while it is active. An index that no role corresponds to resolves to black.
QColor resolveOleColor(OleColor color, const QPalette& palette);

// A picture box: a canvas that keeps what was drawn on it. Drawing goes into a retained image at the
// moment it is asked for; painting only shows that image, so the widget can be hidden, covered or
// repainted at will without its owner drawing again.
//
// Coordinates are pixels of the client area (inside the frame), with (0, 0) at its top left. When the
// widget changes size, the image grows or shrinks with it: what was drawn stays where it was, and new
// area is filled with the back colour. The image follows the size lazily, because a hidden widget
// receives its resize event only when it is shown, while its owner may draw on it at once.
//
// Colours are resolved against the widget's palette when drawing, so a system colour takes the
// theme's value at that moment; already drawn pixels keep theirs.
class PictureBox : public QFrame {
    Q_OBJECT

public:
    explicit PictureBox(QWidget* parent = nullptr);

    // The client area in pixels.
    int ScaleWidth() const { return contentsRect().width(); }
    int ScaleHeight() const { return contentsRect().height(); }

    // The outer width, frame included. Setting it keeps the height; inside a layout the layout has
    // the last word, so an owner that sets it places the box itself.
    int Width() const { return width(); }
    void setWidth(int outerWidth);
    // Outer width minus client width: the frame on both sides together.
    int borderWidth() const { return width() - ScaleWidth(); }

    // The colour of the next filled box, and the colour of clearing and of newly exposed area.
    // Changing either leaves what is already drawn alone.
    OleColor ForeColor() const { return foreColor_; }
    void setForeColor(OleColor color) { foreColor_ = color; }
    OleColor BackColor() const { return backColor_; }
    void setBackColor(OleColor color) { backColor_ = color; }

    // Clears the whole client area to the back colour.
    void Cls();
    // A filled box in the fore colour between two corners given in any order, both corners included:
    // LineBF(0, 0, 1, 9) fills two columns of ten pixels. Whatever falls outside the client area is
    // clipped.
    void LineBF(int x1, int y1, int x2, int y2);

    // What is drawn, at the current client size.
    QImage image() const;

signals:
    // The widget has changed size (the picture box's Resize event). An owner that lays something out
    // on the canvas connects it to redo the layout.
    void Resize();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void syncImageSize() const;
    QColor resolved(OleColor color) const { return resolveOleColor(color, palette()); }

    OleColor foreColor_ = vbcolor::ButtonText;
    OleColor backColor_ = vbcolor::ButtonFace;
    // Kept in step with the client size by syncImageSize(), also from const readers.
    mutable QImage image_;
};

} // namespace tarvo
