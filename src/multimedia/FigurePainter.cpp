#include "multimedia/FigurePainter.h"

#include "multimedia/Body.h"
#include "multimedia/Camera.h"
#include "multimedia/HeadPainter.h"
#include "multimedia/Palette.h"

#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvo {

namespace {

namespace p = proportions;

// Fixed nudges of the painting order for parts that touch: the neck disappears into the collar, the
// head sits on the neck, a hand lies on its forearm.
constexpr float kTorsoBack = 6;
constexpr float kHeadForward = 8;

qreal outlineWidth(const Camera& camera) {
    return std::max(1.0, 0.42 * camera.scale());
}

// The box round tubes through `points` of the given radius.
Extent extentOf(std::initializer_list<QVector3D> points, float radius) {
    QVector3D low = *points.begin();
    QVector3D high = low;
    for (const QVector3D& q : points) {
        low = QVector3D(std::min(low.x(), q.x()), std::min(low.y(), q.y()), std::min(low.z(), q.z()));
        high = QVector3D(std::max(high.x(), q.x()), std::max(high.y(), q.y()), std::max(high.z(), q.z()));
    }
    const QVector3D r(radius, radius, radius);
    return {low - r, high + r};
}

float torsoDepth(const Camera& camera, const Body& body) {
    float depth = 0;
    for (const Ball& b : body.torso)
        depth += camera.depth(b.centre);
    return depth / static_cast<float>(body.torso.size()) - kTorsoBack;
}

float meanDepth(const Camera& camera, std::initializer_list<QVector3D> points) {
    float sum = 0;
    for (const QVector3D& q : points)
        sum += camera.depth(q);
    return sum / static_cast<float>(points.size());
}

void addTorso(std::vector<Drawing>& drawings, const Camera& camera, const Body& body) {
    std::vector<QPointF> outline;
    for (const Ball& b : body.torso)
        addCircle(outline, camera.project(b.centre), b.radius * camera.scale());
    const QPolygonF hull = convexHull(std::move(outline));
    const qreal line = outlineWidth(camera);
    drawings.push_back({torsoDepth(camera, body), [hull, line](QPainter& p) {
                            p.setPen(QPen(palette::outlineOf(palette::shirt), line, Qt::SolidLine,
                                          Qt::RoundCap, Qt::RoundJoin));
                            p.setBrush(palette::shirt);
                            p.drawPolygon(hull);
                        }});
}

void addNeckAndHead(std::vector<Drawing>& drawings, const Camera& camera, const Body& body) {
    const Tube neck{{camera.project(body.neckBase), camera.project(body.neckTop)},
                    2 * p::neckRadius * camera.scale()};
    const qreal line = outlineWidth(camera);
    // The neck goes into the collar: always just behind the torso.
    const float neckDepth = torsoDepth(camera, body) - 0.5f;
    drawings.push_back(
        {neckDepth, [neck, line](QPainter& p) { paintTubes(p, {neck}, palette::skin, line); }});
    drawings.push_back({camera.depth(body.headCentre) + kHeadForward,
                        [camera, body](QPainter& p) { paintHead(p, camera, body); }});
}

void addLegs(std::vector<Drawing>& drawings, const Camera& camera, const Body& body) {
    const qreal s = camera.scale();
    const qreal line = outlineWidth(camera);
    for (const Leg& leg : body.legs) {
        const std::vector<Tube> trouser{
            {{camera.project(leg.hip), camera.project(leg.knee)}, 2 * p::thighRadius * s},
            {{camera.project(leg.knee), camera.project(leg.ankle)}, 2 * p::shinRadius * s}};
        const Tube shoe{{camera.project(leg.ankle + QVector3D(0, -1, -2)), camera.project(leg.toe)},
                        2 * p::footRadius * s};
        drawings.push_back({meanDepth(camera, {leg.hip, leg.knee, leg.ankle}),
                            [trouser, shoe, line](QPainter& p) {
                                paintTubes(p, {shoe}, palette::shoes, line);
                                paintTubes(p, trouser, palette::trousers, line);
                            },
                            extentOf({leg.hip, leg.knee, leg.ankle, leg.toe}, p::thighRadius)});
    }
}

// A finger as two bones that curl towards the palm as the hand closes.
Tube finger(const Camera& camera, const Hand& h, int index) {
    static constexpr std::array<float, 4> length{7.0f, 7.6f, 7.2f, 5.8f};
    const float open = std::max(h.open, 0.0f);
    const float closed = std::max(-h.open, 0.0f);
    const float offset = 2.7f - 1.8f * static_cast<float>(index); // index finger nearest the thumb
    const float spread = (0.06f + 0.42f * open) * (1.5f - static_cast<float>(index)) / 1.5f;
    const QVector3D base = h.wrist + h.fingers * p::palmLength + h.thumbSide * offset;
    const QVector3D dir = (h.fingers + h.thumbSide * spread).normalized();
    const float curl = 0.2f + 1.25f * closed - 0.15f * open;
    const float l = length[static_cast<size_t>(index)];
    const QVector3D knuckle = base + (dir * std::cos(curl) + h.palm * std::sin(curl)) * (l * 0.55f);
    const QVector3D tip = knuckle + (dir * std::cos(2 * curl) + h.palm * std::sin(2 * curl)) * (l * 0.45f);
    return {{camera.project(base), camera.project(knuckle), camera.project(tip)},
            2 * p::fingerRadius * camera.scale()};
}

Tube thumb(const Camera& camera, const Hand& h) {
    const float open = std::max(h.open, 0.0f);
    const float closed = std::max(-h.open, 0.0f);
    const QVector3D base = h.wrist + h.fingers * 1.5f + h.thumbSide * 2.4f;
    const QVector3D relaxed = h.thumbSide * (0.75f + 0.6f * open) + h.fingers * 0.8f + h.palm * 0.35f;
    const QVector3D fist = h.fingers * 0.8f - h.thumbSide * 0.35f + h.palm * 0.9f;
    const QVector3D dir = (relaxed * (1 - closed) + fist * closed).normalized();
    const QVector3D joint = base + dir * 3.6f;
    const QVector3D tip = joint + (dir + h.fingers * 0.5f * (1 - open)).normalized() * 3.2f;
    return {{camera.project(base), camera.project(joint), camera.project(tip)},
            2 * p::thumbRadius * camera.scale()};
}

void addHand(std::vector<Drawing>& drawings, const Camera& camera, const Hand& h, float armDepth) {
    const QVector3D knuckles = h.wrist + h.fingers * p::palmLength;
    const float w = p::palmWidth / 2;
    const QPolygonF palm{
        camera.project(h.wrist + h.thumbSide * (w - 0.9f)), camera.project(knuckles + h.thumbSide * w),
        camera.project(knuckles - h.thumbSide * w), camera.project(h.wrist - h.thumbSide * (w - 0.9f))};
    const qreal thickness = 2.4 * camera.scale();
    std::vector<Tube> fingers;
    for (int i = 0; i < 4; ++i)
        fingers.push_back(finger(camera, h, i));
    const Tube thumbTube = thumb(camera, h);
    const bool palmToCamera = QVector3D::dotProduct(h.palm, camera.towardCamera()) > 0;
    const bool thumbInFront = camera.depth(h.wrist + h.thumbSide * 4 + h.palm) >
                              camera.depth(h.wrist + h.fingers * p::palmLength * 0.5f);
    const QColor fill = palmToCamera ? palette::palmSkin : palette::skin;
    const qreal line = outlineWidth(camera);
    const float depth = std::max(armDepth + 0.5f, meanDepth(camera, {h.wrist, knuckles}));
    drawings.push_back({depth,
                        [=](QPainter& p) {
                            auto paintPalm = [&] {
                                paintTubes(p, {{palm + QPolygonF{palm.front()}, thickness}}, fill, line);
                                p.setPen(Qt::NoPen);
                                p.setBrush(fill);
                                p.drawPolygon(palm);
                            };
                            if (!thumbInFront)
                                paintTubes(p, {thumbTube}, fill, line);
                            // Curled fingers lie in front of the palm when it faces the camera, behind
                            // it otherwise.
                            if (palmToCamera)
                                paintPalm();
                            for (const Tube& f : fingers)
                                paintTubes(p, {f}, fill, line);
                            if (!palmToCamera)
                                paintPalm();
                            if (thumbInFront)
                                paintTubes(p, {thumbTube}, fill, line);
                        },
                        extentOf({h.wrist, knuckles}, 7)});
}

void addArms(std::vector<Drawing>& drawings, const Camera& camera, const Body& body) {
    const qreal s = camera.scale();
    const qreal line = outlineWidth(camera);
    for (const Arm& arm : body.arms) {
        const std::vector<Tube> sleeve{
            {{camera.project(arm.shoulder), camera.project(arm.elbow)}, 2 * p::upperArmRadius * s},
            {{camera.project(arm.elbow), camera.project(arm.hand.wrist)}, 2 * p::forearmRadius * s}};
        const float depth = meanDepth(camera, {arm.shoulder, arm.elbow, arm.hand.wrist});
        drawings.push_back({depth,
                            [sleeve, line](QPainter& p) { paintTubes(p, sleeve, palette::sleeve, line); },
                            extentOf({arm.shoulder, arm.elbow, arm.hand.wrist}, p::upperArmRadius)});
        addHand(drawings, camera, arm.hand, depth);
    }
}

} // namespace

void addFigure(std::vector<Drawing>& drawings, const Camera& camera, const Body& body) {
    addLegs(drawings, camera, body);
    addTorso(drawings, camera, body);
    addNeckAndHead(drawings, camera, body);
    addArms(drawings, camera, body);
}

} // namespace tarvo
