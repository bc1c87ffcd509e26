#pragma once

#include <QPointF>
#include <QSize>
#include <QVector3D>

namespace tarvo {

// Where the camera stands. Yaw turns it round the figure towards the figure's right side (0: facing
// the figure, 90: the figure seen in profile, facing right); pitch lifts it, so the camera looks down
// onto the desk top.
struct View {
    float yaw = 0;
    float pitch = 12;
};

// What the picture shows: the point in its middle and how many centimetres its height spans.
struct Framing {
    QVector3D centre;
    float height = 100;
};

// A parallel projection of the figure's space onto an image: no perspective, so sizes stay true and
// a movement looks the same wherever it happens in the picture.
class Camera {
public:
    Camera(const View& view, const Framing& framing, QSize imageSize);

    QPointF project(const QVector3D& p) const;
    // Larger is nearer to the camera.
    float depth(const QVector3D& p) const { return QVector3D::dotProduct(p, towardCamera_); }
    // Pixels per centimetre.
    float scale() const { return scale_; }
    // The unit vector from the scene to the camera.
    const QVector3D& towardCamera() const { return towardCamera_; }
    // A direction in space as it appears on the image (y down), not normalised.
    QPointF projectDirection(const QVector3D& d) const;
    float yaw() const { return yaw_; }

private:
    QVector3D right_, up_, towardCamera_;
    QPointF offset_;
    float scale_ = 1;
    float yaw_ = 0;
};

} // namespace tarvo
