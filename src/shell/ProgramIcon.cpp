#include "shell/ProgramIcon.h"

#include "shell/ProgramIconSizes.h"

#include <QIconEngine>
#include <QImageReader>
#include <QPainter>

#include <algorithm>

// The resource lives in a static library, whose initialiser the linker would drop unless someone
// refers to it; the macro has to be used outside any namespace.
static void initProgramIconResource() {
    Q_INIT_RESOURCE(tarvo_icon);
}

namespace tarvo {

namespace {

// Draws the icon from the picture of the nearest size the build made, read each time a size is asked
// for. QIcon's own file engine would instead sniff each file's format when it is added, which loads
// every image format plugin installed (SVG, JPEG, GIF...) into a program that reads only PNG.
//
// Nothing is kept: the icon is asked for when a window is made (at every size, for the window
// manager) and when the tray repaints it, both rare, while every size kept would hold some 400 KiB
// for the whole run, the 256-pixel picture alone a quarter of a MiB.
class ProgramIconEngine : public QIconEngine {
public:
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        Q_UNUSED(mode);
        Q_UNUSED(state);
        if (size.isEmpty())
            return {};
        return draw(std::min(size.width(), size.height()));
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device() != nullptr ? painter->device()->devicePixelRatioF() : 1.0;
        const QPixmap picture = pixmap(rect.size() * ratio, mode, state);
        const QSize shown = rect.size().boundedTo(QSize(picture.width(), picture.height()) / ratio);
        painter->drawPixmap(QRect(rect.topLeft() + QPoint((rect.width() - shown.width()) / 2,
                                                          (rect.height() - shown.height()) / 2),
                                  shown),
                            picture);
    }

    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        const int side = std::min(size.width(), size.height());
        return {side, side};
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes;
        for (const int size : kProgramIconSizes)
            sizes << QSize(size, size);
        return sizes;
    }

    QIconEngine* clone() const override { return new ProgramIconEngine(*this); }
    QString key() const override { return QStringLiteral("ProgramIconEngine"); }

private:
    static QPixmap draw(int side) {
        // The smallest picture at least as large as asked for, scaled down if it is larger; above the
        // largest, the largest scaled up.
        int chosen = kProgramIconSizes[std::size(kProgramIconSizes) - 1];
        for (const int size : kProgramIconSizes) {
            if (size >= side) {
                chosen = size;
                break;
            }
        }
        QImageReader reader(QStringLiteral(":/icons/tarvo-%1.png").arg(chosen), "png");
        // Named format only: guessing from the content asks every installed plugin.
        reader.setAutoDetectImageFormat(false);
        QImage image = reader.read();
        if (image.isNull())
            return {};
        if (chosen != side)
            image = image.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return QPixmap::fromImage(std::move(image));
    }
};

} // namespace

QIcon programIcon() {
    static const bool initialised = (initProgramIconResource(), true);
    Q_UNUSED(initialised);
    return QIcon(new ProgramIconEngine);
}

} // namespace tarvo
