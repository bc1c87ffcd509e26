#include "multimedia/Scenery.h"

#include "multimedia/Camera.h"
#include "multimedia/Palette.h"

#include <QLinearGradient>
#include <QPainterPath>

#include <algorithm>
#include <array>

namespace tarvo {

namespace {

constexpr float kFloor = -47; // the floor, below the seat
constexpr float kWallDistance = 90;

struct Box {
    QVector3D low, high;
    QColor colour;
};

void addBox(std::vector<Drawing>& drawings, const Camera& camera, const Box& box) {
    const QVector3D& a = box.low;
    const QVector3D& b = box.high;
    std::array<QVector3D, 8> corners;
    for (int i = 0; i < 8; ++i)
        corners[static_cast<size_t>(i)] = {i & 1 ? b.x() : a.x(), i & 2 ? b.y() : a.y(),
                                           i & 4 ? b.z() : a.z()};
    // The farthest corner decides the order: a large flat box (the desk top) is then painted before the
    // hands that rest on it, however far its front edge reaches towards the camera.
    float far = camera.depth(corners[0]);
    for (const QVector3D& c : corners)
        far = std::min(far, camera.depth(c));

    struct Face {
        std::array<int, 4> corners;
        QVector3D normal;
        int shade; // percent: lit from above and a little from the front
    };
    static constexpr std::array<Face, 6> faces{{
        {{0, 1, 3, 2}, {0, 0, -1}, 112},
        {{4, 5, 7, 6}, {0, 0, 1}, 100},
        {{0, 2, 6, 4}, {-1, 0, 0}, 108},
        {{1, 3, 7, 5}, {1, 0, 0}, 108},
        {{0, 1, 5, 4}, {0, -1, 0}, 125},
        {{2, 3, 7, 6}, {0, 1, 0}, 94},
    }};
    std::vector<QPolygonF> visible;
    std::vector<int> shades;
    for (const Face& f : faces) {
        if (QVector3D::dotProduct(f.normal, camera.towardCamera()) <= 0.01f)
            continue;
        QPolygonF polygon;
        for (int c : f.corners)
            polygon << camera.project(corners[static_cast<size_t>(c)]);
        visible.push_back(polygon);
        shades.push_back(f.shade);
    }
    const QColor colour = box.colour;
    const qreal outline = std::max(1.0, 0.5 * camera.scale());
    drawings.push_back(
        {far,
         [visible, shades, colour, outline](QPainter& p) {
             p.setPen(QPen(palette::outlineOf(colour), outline, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
             for (size_t i = 0; i < visible.size(); ++i) {
                 p.setBrush(colour.darker(shades[i]));
                 p.drawPolygon(visible[i]);
             }
         },
         Extent{a, b}});
}

// The point where the floor meets the wall behind the scene, as the camera sees it.
QPointF wallFoot(const Camera& camera, float along) {
    QVector3D away = -camera.towardCamera();
    away.setY(0);
    away.normalize();
    const QVector3D across(-away.z(), 0, away.x());
    return camera.project(away * kWallDistance + across * along + QVector3D(0, kFloor, 0));
}

void paintWindow(QPainter& painter, const Camera& camera) {
    // A window in the wall ahead of the figure, seen past its screen.
    QVector3D away = -camera.towardCamera();
    away.setY(0);
    away.normalize();
    const QVector3D across(-away.z(), 0, away.x());
    const QVector3D base = away * kWallDistance;
    const QVector3D leftLow = base + across * 48 + QVector3D(0, 46, 0);
    const QVector3D rightHigh = base + across * 118 + QVector3D(0, 98, 0);
    const QRectF pane = QRectF(camera.project(leftLow), camera.project(rightHigh)).normalized();

    painter.save();
    painter.setClipRect(pane);
    QLinearGradient sky(pane.topLeft(), pane.bottomLeft());
    sky.setColorAt(0, palette::sky.lighter(104));
    sky.setColorAt(1, palette::sky.lighter(118));
    painter.fillRect(pane, sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xFF, 0xF3, 0xC4));
    painter.drawEllipse(QPointF(pane.left() + pane.width() * 0.72, pane.top() + pane.height() * 0.25),
                        pane.width() * 0.07, pane.width() * 0.07);
    painter.setBrush(palette::hillFar);
    painter.drawEllipse(QPointF(pane.left() + pane.width() * 0.25, pane.bottom() + pane.height() * 0.08),
                        pane.width() * 0.6, pane.height() * 0.42);
    painter.setBrush(palette::hillNear);
    painter.drawEllipse(QPointF(pane.left() + pane.width() * 0.9, pane.bottom() + pane.height() * 0.12),
                        pane.width() * 0.65, pane.height() * 0.36);
    painter.restore();

    const qreal bar = std::max(2.0, 1.6 * camera.scale());
    painter.setPen(QPen(QColor(0xF7, 0xF7, 0xF4), bar, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(pane);
    painter.drawLine(QPointF(pane.center().x(), pane.top()), QPointF(pane.center().x(), pane.bottom()));
    painter.setPen(QPen(palette::outlineOf(palette::wallBottom), std::max(1.0, 0.4 * camera.scale())));
    painter.drawRect(pane.adjusted(-bar / 2, -bar / 2, bar / 2, bar / 2));
}

} // namespace

void paintBackdrop(QPainter& painter, const Camera& camera, QSize size, Backdrop backdrop) {
    const QRectF all(QPointF(0, 0), QSizeF(size));
    QLinearGradient wall(all.topLeft(), all.bottomLeft());
    wall.setColorAt(0, palette::wallTop);
    wall.setColorAt(1, palette::wallBottom);
    painter.fillRect(all, wall);
    const qreal floorTop = std::min(wallFoot(camera, -200).y(), wallFoot(camera, 200).y());
    painter.fillRect(QRectF(0, floorTop, size.width(), size.height() - floorTop), palette::floor);
    if (backdrop == Backdrop::OpenWindow)
        paintWindow(painter, camera);
}

void addFurniture(std::vector<Drawing>& drawings, const Camera& camera) {
    const std::vector<Box> boxes{
        // desk: top and legs
        {{-75, 22, 18}, {75, 25, 88}, palette::desk},
        {{-73, kFloor, 20}, {-69, 22, 24}, palette::desk.darker(108)},
        {{69, kFloor, 20}, {73, 22, 24}, palette::desk.darker(108)},
        {{-73, kFloor, 82}, {-69, 22, 86}, palette::desk.darker(108)},
        {{69, kFloor, 82}, {73, 22, 86}, palette::desk.darker(108)},
        // a panel under the front edge keeps the legs out of the way in pictures from the front
        {{-69, -4, 83}, {69, 22, 84.5f}, palette::desk.darker(104)},
        // keyboard and mouse
        {{-20, 25, 31}, {20, 26.4f, 45}, palette::keyboard},
        {{-34, 25, 36}, {-28, 27, 44}, palette::keyboard},
        // chair: seat, back, post and foot
        {{-24, -6, -18}, {24, -1, 22}, palette::chair},
        {{-25, 6, -19}, {25, 58, -13}, palette::chair},
        {{-2.5f, -40, -3}, {2.5f, -6, 3}, palette::chair.darker(115)},
        {{-26, -44, -26}, {26, -41, 26}, palette::chair.darker(115)},
    };
    for (const Box& b : boxes)
        addBox(drawings, camera, b);
    if (camera.yaw() >= 45) {
        addBox(drawings, camera, {{-12, 25, 70}, {12, 26.5f, 82}, palette::monitor});
        addBox(drawings, camera, {{-3, 26, 76}, {3, 36, 80}, palette::monitor});
        addBox(drawings, camera, {{-29, 34, 72}, {29, 68, 75}, palette::monitor});
        addBox(drawings, camera, {{-26.5f, 36.5f, 71.6f}, {26.5f, 65.5f, 72}, palette::screen});
    }
}

} // namespace tarvo
