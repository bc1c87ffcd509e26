#include "multimedia/FrameRenderer.h"

#include "multimedia/Body.h"
#include "multimedia/FigurePainter.h"
#include "multimedia/Medium.h"
#include "multimedia/Palette.h"

#include <QFont>
#include <QPainter>

namespace tarvo {

namespace {

void paintTitle(QPainter& painter, const QString& title, QSize size) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(static_cast<int>(size.height() * 0.12));
    painter.setFont(font);
    const QRectF band(0, size.height() * 0.05, size.width(), size.height() * 0.2);
    // A soft shadow lifts the letters off the wall without a box round them.
    painter.setPen(QColor(255, 255, 255, 190));
    painter.drawText(band.translated(0, size.height() * 0.006), Qt::AlignCenter, title);
    painter.setPen(palette::title);
    painter.drawText(band, Qt::AlignCenter, title);
}

} // namespace

QImage renderFrame(const Medium& medium, float seconds, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const Camera camera(medium.view, medium.framing, size);
    const Pose pose = medium.motion.at(seconds);
    const Body body = bodyFor(pose);
    const Body still = bodyFor(medium.motion.keys().front().pose);

    paintBackdrop(painter, camera, size, medium.backdrop);
    for (const Hint& hint : medium.hints)
        paintBreathHint(painter, camera, still, hint, pose.breath);
    std::vector<Drawing> drawings;
    addFurniture(drawings, camera);
    addFigure(drawings, camera, body);
    paintInDepthOrder(painter, std::move(drawings));
    for (const Hint& hint : medium.hints)
        paintArrowHint(painter, camera, still, hint);
    if (!medium.title.isEmpty())
        paintTitle(painter, medium.title, size);
    return image;
}

QRectF anchorBounds(const Medium& medium, float seconds, Anchor anchor, QSize size) {
    const Camera camera(medium.view, medium.framing, size);
    const Body body = bodyFor(medium.motion.at(seconds));
    const qreal s = camera.scale();
    auto around = [&](const QVector3D& c, float radius) {
        const QPointF p = camera.project(c);
        return QRectF(p.x() - radius * s, p.y() - radius * s, 2 * radius * s, 2 * radius * s);
    };
    auto hand = [&](const Hand& h) {
        // The hand reaches a palm and a finger's length beyond the wrist in any direction.
        return around(h.wrist + h.fingers * 6, 9);
    };
    switch (anchor) {
    case Anchor::Head:
    case Anchor::Chin:
        return around(body.headCentre, proportions::headRadius * 1.08f);
    case Anchor::Chest:
        return around((body.torso[4].centre + body.torso[5].centre) / 2, 12);
    case Anchor::LeftShoulder:
        return around(body.arms[LeftSide].shoulder, proportions::upperArmRadius + 4);
    case Anchor::RightShoulder:
        return around(body.arms[RightSide].shoulder, proportions::upperArmRadius + 4);
    case Anchor::LeftHand:
        return hand(body.arms[LeftSide].hand);
    case Anchor::RightHand:
        return hand(body.arms[RightSide].hand);
    }
    return {};
}

} // namespace tarvo
