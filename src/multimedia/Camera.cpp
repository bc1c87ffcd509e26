#include "multimedia/Camera.h"

#include <cmath>
#include <numbers>

namespace tarvo {

Camera::Camera(const View& view, const Framing& framing, QSize imageSize)
    : yaw_(view.yaw) {
    const float degree = std::numbers::pi_v<float> / 180;
    const float yaw = view.yaw * degree;
    const float pitch = view.pitch * degree;
    towardCamera_ =
        QVector3D(-std::sin(yaw) * std::cos(pitch), std::sin(pitch), std::cos(yaw) * std::cos(pitch));
    const QVector3D looking = -towardCamera_;
    right_ = QVector3D::crossProduct(looking, {0, 1, 0}).normalized();
    up_ = QVector3D::crossProduct(right_, looking).normalized();
    scale_ = static_cast<float>(imageSize.height()) / framing.height;
    const QPointF centre = projectDirection(framing.centre);
    offset_ = QPointF(imageSize.width() / 2.0, imageSize.height() / 2.0) - centre;
}

QPointF Camera::projectDirection(const QVector3D& d) const {
    return {QVector3D::dotProduct(d, right_) * scale_, -QVector3D::dotProduct(d, up_) * scale_};
}

QPointF Camera::project(const QVector3D& p) const {
    return projectDirection(p) + offset_;
}

} // namespace tarvo
