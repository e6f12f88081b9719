#include "core/geometry/desktop_geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace paneforge {

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();
}

DesktopRect DesktopRect::null() {
    return DesktopRect(kInfinity, kInfinity, 0.0, 0.0);
}

double DesktopRect::minX() const {
    return width_ < 0 ? x_ + width_ : x_;
}
double DesktopRect::maxX() const {
    return width_ < 0 ? x_ : x_ + width_;
}
double DesktopRect::minY() const {
    return height_ < 0 ? y_ + height_ : y_;
}
double DesktopRect::maxY() const {
    return height_ < 0 ? y_ : y_ + height_;
}

bool DesktopRect::isNull() const {
    return std::isinf(x_) || std::isinf(y_);
}

bool DesktopRect::isEmpty() const {
    return isNull() || width_ == 0.0 || height_ == 0.0;
}

bool DesktopRect::contains(DesktopPoint point) const {
    if (isEmpty()) {
        return false;
    }
    return minX() <= point.x && point.x < maxX() && minY() <= point.y && point.y < maxY();
}

DesktopRect DesktopRect::standardized() const {
    if (isNull()) {
        return *this;
    }
    return DesktopRect(minX(), minY(), std::abs(width_), std::abs(height_));
}

DesktopRect DesktopRect::united(const DesktopRect& other) const {
    if (isNull()) {
        return other.standardized();
    }
    if (other.isNull()) {
        return standardized();
    }
    const double left = std::min(minX(), other.minX());
    const double bottom = std::min(minY(), other.minY());
    const double right = std::max(maxX(), other.maxX());
    const double top = std::max(maxY(), other.maxY());
    return DesktopRect(left, bottom, right - left, top - bottom);
}

bool operator==(const DesktopRect& a, const DesktopRect& b) {
    if (a.isNull() || b.isNull()) {
        return a.isNull() && b.isNull();
    }
    return a.x_ == b.x_ && a.y_ == b.y_ && a.width_ == b.width_ && a.height_ == b.height_;
}

} // namespace paneforge
