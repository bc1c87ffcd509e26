#pragma once

#include "engine/CountdownBar.h"
#include "micropause/PictureBox.h"

#include <QPointer>

#include <cstdint>

class QObject;

namespace tarvo {

// A horizontal bar of filled blocks drawn on a picture box, the break screen's countdown. The bar owns
// no window: it draws with the canvas's own fore colour and filled boxes, and the canvas keeps the
// picture. Every property change redraws at once, without clearing first (the blocks cover the bar
// completely, so clearing would only add flicker); only Resize and ResizeEx clear, since the layout
// may have shrunk.
//
// The layout is one block per pixel column, spanning the canvas's whole height. Resize lays out one
// column more than the canvas is wide; ResizeEx drops that extra column again, so that the lit share
// matches what is seen. An owner that lets the canvas change size connects the canvas's Resize signal
// to ResizeEx.
//
// The lit share is Value / (Max - Min), not (Value - Min) / (Max - Min). This is deliberate and kept:
// with Min 0, the only way the break screen uses the bar, the two agree; with another Min the bar
// shows Value's own share of the range's length rather than the position within the range.
//
// Properties are read with their name and written with set<Name>, which refuses a bad value with a
// RuntimeError in the object-error range and leaves the bar unchanged. Whole-number arithmetic is
// checked: an overflow is run-time error 6. Everything except the setters does nothing until a canvas
// is set; a canvas that is destroyed counts as none.
class CProgressBar : public CountdownBar {
public:
    CProgressBar() = default;
    CProgressBar(const CProgressBar&) = delete;
    CProgressBar& operator=(const CProgressBar&) = delete;

    // Only a PictureBox is accepted (anything else, null included, is object error 1 and keeps the
    // current canvas). The canvas takes the bar's colours and is laid out with ResizeEx.
    void setCanvas(QObject* canvas);
    PictureBox* Canvas() const { return Canvas_; }

    // Stored clamped to Min..Max. Changing Min or Max does not re-clamp it.
    void setValue(std::int32_t value) override;
    std::int32_t Value() const override { return Value_; }
    // Min must stay below Max (object error 2 / 3 otherwise).
    void setMin(std::int32_t value);
    std::int32_t Min() const { return Min_; }
    void setMax(std::int32_t value) override;
    std::int32_t Max() const override { return Max_; }

    // Colours of lit and unlit blocks, plain or system colours (resolved when drawing).
    void setForeColor(OleColor color);
    OleColor ForeColor() const { return ForeColor_; }
    void setBackColor(OleColor color);
    OleColor BackColor() const { return BackColor_; }

    // Redraws the blocks, clearing the canvas first if asked.
    void Refresh(bool ClearFirst = false);
    // Lays the blocks out afresh for the canvas's size and redraws.
    void Resize();
    // Lays the blocks out, trims the canvas's outer width to whole blocks and redraws. It ignores the
    // resize that its own width change causes.
    void ResizeEx();

private:
    void layoutBlocks();
    void drawBlocks();
    void drawRun(std::int32_t first, std::int32_t last, std::int32_t& x, std::int32_t top,
                 std::int32_t bottom);

    QPointer<PictureBox> Canvas_;
    std::int32_t Value_ = 0;
    std::int32_t Min_ = 0;
    std::int32_t Max_ = 100;
    OleColor ForeColor_ = vbcolor::Highlight;
    OleColor BackColor_ = vbcolor::ButtonFace;
    std::int16_t BlockWidth_ = 0;
    std::int16_t BlockHeight_ = 0;
    std::int16_t BlockGap_ = 0;
    std::int16_t BlockMargin_ = 0;
    std::int16_t BlockCount_ = 0;
    bool Resizing_ = false;
};

} // namespace tarvo
