#pragma once

#include <QMetaType>
#include <QString>

namespace paneforge {

// Points, sizes and rectangles in desktop space: points, origin at the bottom-left corner of the
// primary display, y growing upwards. These follow the platform rectangle rules that the snapping
// logic relies on, which differ from QRectF's: containment is half-open (minimum edges in, maximum
// edges out) and an empty rectangle contains nothing.

struct DesktopPoint {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const DesktopPoint&, const DesktopPoint&) = default;
};

struct DesktopSize {
    double width = 0.0;
    double height = 0.0;

    friend bool operator==(const DesktopSize&, const DesktopSize&) = default;
};

class DesktopRect {
public:
    constexpr DesktopRect() = default;
    constexpr DesktopRect(double x, double y, double width, double height)
        : x_(x)
        , y_(y)
        , width_(width)
        , height_(height) {}
    constexpr DesktopRect(DesktopPoint origin, DesktopSize size)
        : DesktopRect(origin.x, origin.y, size.width, size.height) {}

    // The null rectangle: the identity of union, contains nothing, has no position.
    static DesktopRect null();

    double x() const { return x_; }
    double y() const { return y_; }
    double width() const { return width_; }
    double height() const { return height_; }
    DesktopPoint origin() const { return {x_, y_}; }
    DesktopSize size() const { return {width_, height_}; }

    // Edges of the standardized rectangle (a negative width or height extends towards minus).
    double minX() const;
    double maxX() const;
    double minY() const;
    double maxY() const;
    double midX() const { return (minX() + maxX()) / 2.0; }
    double midY() const { return (minY() + maxY()) / 2.0; }

    bool isNull() const;
    // Null, or zero width or height.
    bool isEmpty() const;

    // minX <= x < maxX and minY <= y < maxY; false for an empty or null rectangle.
    bool contains(DesktopPoint point) const;

    // The same rectangle with a non-negative width and height.
    DesktopRect standardized() const;

    // The smallest rectangle containing both; a null operand yields the other one. Zero-sized
    // rectangles still count with their position, as the platform's rectangle union does.
    DesktopRect united(const DesktopRect& other) const;

    // Exact equality of the stored components (two null rectangles are equal).
    friend bool operator==(const DesktopRect& a, const DesktopRect& b);

private:
    double x_ = 0.0;
    double y_ = 0.0;
    double width_ = 0.0;
    double height_ = 0.0;
};

} // namespace paneforge

Q_DECLARE_METATYPE(paneforge::DesktopRect)
