#include "multimedia/Drawing.h"

#include "multimedia/Palette.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvo {

namespace {

bool under(const Drawing& a, const Drawing& b) {
    if (!a.extent || !b.extent)
        return false;
    const Extent& x = *a.extent;
    const Extent& y = *b.extent;
    return x.high.y() <= y.low.y() && x.high.x() > y.low.x() && x.low.x() < y.high.x() &&
           x.high.z() > y.low.z() && x.low.z() < y.high.z();
}

} // namespace

void paintInDepthOrder(QPainter& painter, std::vector<Drawing> drawings) {
    std::stable_sort(drawings.begin(), drawings.end(),
                     [](const Drawing& a, const Drawing& b) { return a.depth < b.depth; });
    // Move every part that lies under an earlier one to just before it. Parts under something are few
    // (the legs and hands under the desk top), so a simple pass per part is cheap.
    for (size_t j = 1; j < drawings.size(); ++j) {
        for (size_t i = 0; i < j; ++i) {
            if (under(drawings[j], drawings[i])) {
                std::rotate(drawings.begin() + static_cast<std::ptrdiff_t>(i),
                            drawings.begin() + static_cast<std::ptrdiff_t>(j),
                            drawings.begin() + static_cast<std::ptrdiff_t>(j) + 1);
                break;
            }
        }
    }
    for (const Drawing& d : drawings) {
        painter.save();
        d.paint(painter);
        painter.restore();
    }
}

namespace {

// A tube seen end-on has no length; Qt then draws no round cap, so give it the smallest one.
QPolygonF drawable(QPolygonF points) {
    if (points.size() == 1)
        points.append(points.front());
    const QPointF d = points.back() - points.front();
    if (points.size() == 2 && std::abs(d.x()) + std::abs(d.y()) < 0.01)
        points.back() += QPointF(0.01, 0);
    return points;
}

} // namespace

void paintTubes(QPainter& painter, const std::vector<Tube>& tubes, const QColor& fill, qreal outline) {
    QPen pen(Qt::NoBrush, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setBrush(Qt::NoBrush);
    pen.setColor(palette::outlineOf(fill));
    for (const Tube& t : tubes) {
        pen.setWidthF(t.width + 2 * outline);
        painter.setPen(pen);
        painter.drawPolyline(drawable(t.points));
    }
    pen.setColor(fill);
    for (const Tube& t : tubes) {
        pen.setWidthF(t.width);
        painter.setPen(pen);
        painter.drawPolyline(drawable(t.points));
    }
}

QPolygonF convexHull(std::vector<QPointF> points) {
    std::sort(points.begin(), points.end(), [](const QPointF& a, const QPointF& b) {
        return a.x() < b.x() || (a.x() == b.x() && a.y() < b.y());
    });
    if (points.size() < 3)
        return QPolygonF(QList<QPointF>(points.begin(), points.end()));
    auto cross = [](const QPointF& o, const QPointF& a, const QPointF& b) {
        return (a.x() - o.x()) * (b.y() - o.y()) - (a.y() - o.y()) * (b.x() - o.x());
    };
    std::vector<QPointF> hull(2 * points.size());
    size_t k = 0;
    for (const QPointF& p : points) { // lower chain
        while (k >= 2 && cross(hull[k - 2], hull[k - 1], p) <= 0)
            --k;
        hull[k++] = p;
    }
    const size_t lower = k + 1;
    for (size_t i = points.size() - 1; i-- > 0;) { // upper chain
        while (k >= lower && cross(hull[k - 2], hull[k - 1], points[i]) <= 0)
            --k;
        hull[k++] = points[i];
    }
    hull.resize(k - 1);
    return QPolygonF(QList<QPointF>(hull.begin(), hull.end()));
}

void addCircle(std::vector<QPointF>& points, const QPointF& centre, qreal radius) {
    constexpr int steps = 32;
    for (int i = 0; i < steps; ++i) {
        const qreal a = 2 * std::numbers::pi * i / steps;
        points.emplace_back(centre.x() + radius * std::cos(a), centre.y() + radius * std::sin(a));
    }
}

} // namespace tarvo
