#include "micropause/CProgressBar.h"

#include "core/Checked.h"
#include "core/RuntimeError.h"
#include "core/VbConvert.h"

#include <QObject>

namespace tarvo {

void CProgressBar::setCanvas(QObject* canvas) {
    auto* pictureBox = qobject_cast<PictureBox*>(canvas);
    if (pictureBox == nullptr)
        throw RuntimeError(vberr::objectError(1),
                           QStringLiteral("Canvas property must be of type PictureBox."),
                           QStringLiteral("CProgressBar.Canvas"));
    Canvas_ = pictureBox;
    Canvas_->setForeColor(ForeColor_);
    Canvas_->setBackColor(BackColor_);
    ResizeEx();
}

void CProgressBar::setValue(std::int32_t value) {
    if (value > Max_)
        Value_ = Max_;
    else if (value < Min_)
        Value_ = Min_;
    else
        Value_ = value;
    Refresh();
}

void CProgressBar::setMin(std::int32_t value) {
    if (value >= Max_)
        throw RuntimeError(vberr::objectError(2), QStringLiteral("Min property must be less than Max."),
                           QStringLiteral("CProgressBar.Min"));
    Min_ = value;
    Refresh();
}

void CProgressBar::setMax(std::int32_t value) {
    if (value <= Min_)
        throw RuntimeError(vberr::objectError(3), QStringLiteral("Max property must be greater than Min."),
                           QStringLiteral("CProgressBar.Max"));
    Max_ = value;
    Refresh();
}

void CProgressBar::setForeColor(OleColor color) {
    ForeColor_ = color;
    if (Canvas_) {
        Canvas_->setForeColor(color);
        Refresh();
    }
}

void CProgressBar::setBackColor(OleColor color) {
    BackColor_ = color;
    if (Canvas_) {
        Canvas_->setBackColor(color);
        Refresh();
    }
}

void CProgressBar::Refresh(bool ClearFirst) {
    if (!Canvas_)
        return;
    if (ClearFirst)
        Canvas_->Cls();
    drawBlocks();
}

void CProgressBar::Resize() {
    if (!Canvas_)
        return;
    layoutBlocks();
    Refresh(true);
}

void CProgressBar::ResizeEx() {
    if (!Canvas_ || Resizing_)
        return;
    using namespace checked;
    layoutBlocks();

    // W: the width the blocks need; P: where the last block begins.
    const std::int16_t step = add(BlockWidth_, BlockGap_);
    std::int16_t W = add(BlockGap_, mul(BlockCount_, step));
    const std::int16_t SW = toInt16(Canvas_->ScaleWidth());
    const std::int16_t P = sub(sub(W, BlockWidth_), BlockGap_);
    // A last block whose span the canvas does not reach past the middle of is dropped. One column per
    // pixel makes this always the case, which removes the column that the layout adds beyond the
    // canvas's right edge.
    if (sub(SW, P) <= sub(W, SW)) {
        BlockCount_ = sub(BlockCount_, std::int16_t{1});
        W = add(BlockGap_, mul(BlockCount_, step));
    }

    // The new outer width keeps the frame. The canvas answers with a resize, which must not lay the
    // bar out again half-way through this one.
    const std::int16_t border = toInt16(sub(Canvas_->Width(), Canvas_->ScaleWidth()));
    Resizing_ = true;
    Canvas_->setWidth(std::int32_t{W} + border);
    Resizing_ = false;

    Refresh(true);
}

void CProgressBar::layoutBlocks() {
    using namespace checked;
    BlockMargin_ = 0;
    BlockGap_ = 0;
    BlockHeight_ = toInt16(sub(Canvas_->ScaleHeight(), mul(std::int32_t{2}, std::int32_t{BlockMargin_})));
    BlockWidth_ = 1;
    const std::int32_t step = add(BlockGap_, BlockWidth_);
    BlockCount_ = toInt16(add(idiv(std::int32_t{Canvas_->ScaleWidth()}, step), std::int32_t{1}));
}

void CProgressBar::drawBlocks() {
    using namespace checked;
    const double range = sub(Max_, Min_);
    const std::int32_t lit = vb::toLong(static_cast<double>(Value_) / range * BlockCount_);

    Canvas_->setForeColor(ForeColor_);
    const std::int32_t top = BlockMargin_;
    const std::int32_t bottom =
        sub(add(std::int32_t{BlockMargin_}, std::int32_t{BlockHeight_}), std::int32_t{1});
    std::int32_t x = BlockMargin_;
    drawRun(1, lit, x, top, bottom);

    // The canvas keeps the unlit colour as its fore colour until the next drawing.
    if (lit < BlockCount_) {
        Canvas_->setForeColor(BackColor_);
        drawRun(add(lit, std::int32_t{1}), BlockCount_, x, top, bottom);
    }
}

// Draws blocks `first` to `last` from x on, leaving x where the next block begins. The box reaches from x to
// x + BlockWidth with both edges filled, so each block covers the first column of the next one, which
// that block then paints over. Blocks that begin past the canvas's right edge would be clipped
// completely; the run stops there, which bounds the work when Value lies far outside Min..Max.
void CProgressBar::drawRun(std::int32_t first, std::int32_t last, std::int32_t& x, std::int32_t top,
                           std::int32_t bottom) {
    using namespace checked;
    const std::int32_t step = add(std::int32_t{BlockWidth_}, std::int32_t{BlockGap_});
    const std::int32_t visibleEnd = Canvas_->ScaleWidth();
    for (std::int32_t block = first; block <= last && x < visibleEnd; ++block) {
        Canvas_->LineBF(x, top, add(x, std::int32_t{BlockWidth_}), bottom);
        x = add(x, step);
    }
}

} // namespace tarvo
