#pragma once

#include <QPixmap>
#include <QWidget>

namespace tarvo {

// A picture box that media are shown on: a picture, drawn at its top left (and, with automatic sizing,
// giving the box its size), or a video, whose window a media device makes a child of this box's own
// window (its handle()). The ground is black. Clicks, double clicks and typed characters go to the
// listener, as the box's Click, DblClick and KeyPress events.
class MediaSurface : public QWidget {
    Q_OBJECT

public:
    class Listener {
    public:
        virtual void surfaceClick() = 0;
        virtual void surfaceDblClick() = 0;
        // The typed character's code (27 for Esc, 13 for Enter); the listener may set it to 0.
        virtual void surfaceKeyPress(int& keyAscii) = 0;

    protected:
        ~Listener() = default;
    };

    explicit MediaSurface(QWidget* parent = nullptr);

    void setListener(Listener* listener) { listener_ = listener; }

    // Shows the picture in the file; false, leaving the box empty, when it cannot be read.
    bool loadPicture(const QString& file);
    void clearPicture();
    bool hasPicture() const { return !picture_.isNull(); }
    // With automatic sizing the box takes the size of each picture it is given.
    void setAutoSize(bool on) { autoSize_ = on; }
    bool autoSize() const { return autoSize_; }
    // The window a video is made a child of.
    unsigned long long handle();

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPixmap picture_;
    bool autoSize_ = false;
    Listener* listener_ = nullptr;
};

} // namespace tarvo
