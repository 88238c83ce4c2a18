#pragma once

// Points, sizes and rectangles in points (not pixels), as the view tree uses them.
namespace kit {

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    Point origin;
    Size size;

    constexpr Rect() = default;
    constexpr Rect(double x, double y, double width, double height) : origin{x, y}, size{width, height} {}
    constexpr Rect(Point o, Size s) : origin(o), size(s) {}

    double minX() const { return origin.x; }
    double minY() const { return origin.y; }
    double maxX() const { return origin.x + size.width; }
    double maxY() const { return origin.y + size.height; }
    double width() const { return size.width; }
    double height() const { return size.height; }
    bool isEmpty() const { return size.width <= 0 || size.height <= 0; }
    // Half-open: the right and bottom edges are outside.
    bool contains(Point p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }

    bool operator==(const Rect&) const = default;
};

}  // namespace kit
