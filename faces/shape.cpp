// SPDX-License-Identifier: MIT
// Flattening, and crossing by lines with the winding counted, as overlapping contours are common.
#include "faces/shape.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace faces {

namespace {

constexpr std::size_t maximumLines = 16'384;
constexpr int linesPerCurve = 6;

std::vector<Span> spansOf(std::vector<std::pair<double, int>>& crossings) {
    std::sort(crossings.begin(), crossings.end());
    std::vector<Span> spans;
    int winding = 0;
    double start = 0;
    for (const auto& [place, direction] : crossings) {
        const int before = std::exchange(winding, winding + direction);
        if (before == 0) {
            start = place;
        } else if (winding == 0 && place > start) {
            spans.push_back({start, place});
        }
    }
    return spans;
}

} // namespace

/// The outline while it is taken apart.
struct Shape::Drawing {
    Shape shape;
    Point start;
    Point at;
    double twiceArea = 0; ///< of the contour so far

    static Point pointOf(const FT_Vector* vector) {
        return {static_cast<double>(vector->x), static_cast<double>(vector->y)};
    }
    static Drawing& self(void* drawing) { return *static_cast<Drawing*>(drawing); }

    void lineTo(Point to) {
        shape.lines_.push_back({at, to});
        twiceArea += at.x * to.y - to.x * at.y;
        at = to;
    }
    void close() {
        if (at.x != start.x || at.y != start.y) {
            lineTo(start);
        }
        shape.area_ = std::max(shape.area_, std::abs(twiceArea) / 2);
        twiceArea = 0;
    }
    void curveTo(Point one, Point two, Point to) {
        const Point from = at;
        for (int i = 1; i <= linesPerCurve; ++i) {
            const double t = static_cast<double>(i) / linesPerCurve;
            const double s = 1 - t;
            const auto mix = [&](double a, double b, double c, double d) {
                return s * s * s * a + 3 * s * s * t * b + 3 * s * t * t * c + t * t * t * d;
            };
            lineTo({mix(from.x, one.x, two.x, to.x), mix(from.y, one.y, two.y, to.y)});
        }
    }
    [[nodiscard]] int verdict() const { return shape.lines_.size() > maximumLines ? 1 : 0; }
};

std::optional<Shape> Shape::of(const FT_Outline& outline) {
    FT_Outline_Funcs steps{};
    steps.move_to = [](const FT_Vector* to, void* user) {
        Drawing& drawing = Drawing::self(user);
        drawing.close();
        drawing.start = drawing.at = Drawing::pointOf(to);
        return drawing.verdict();
    };
    steps.line_to = [](const FT_Vector* to, void* user) {
        Drawing::self(user).lineTo(Drawing::pointOf(to));
        return Drawing::self(user).verdict();
    };
    steps.conic_to = [](const FT_Vector* control, const FT_Vector* end, void* user) {
        Drawing& drawing = Drawing::self(user);
        const Point middle = Drawing::pointOf(control);
        const Point to = Drawing::pointOf(end);
        const auto towards = [&](Point from) {
            return Point{from.x + (middle.x - from.x) * 2 / 3,
                         from.y + (middle.y - from.y) * 2 / 3};
        };
        drawing.curveTo(towards(drawing.at), towards(to), to);
        return drawing.verdict();
    };
    steps.cubic_to = [](const FT_Vector* one, const FT_Vector* two, const FT_Vector* to,
                        void* user) {
        Drawing& drawing = Drawing::self(user);
        drawing.curveTo(Drawing::pointOf(one), Drawing::pointOf(two), Drawing::pointOf(to));
        return drawing.verdict();
    };
    Drawing drawing;
    FT_Outline copy = outline; // not written to, but asked for as if
    if (FT_Outline_Decompose(&copy, &steps, &drawing) != 0) {
        return std::nullopt;
    }
    drawing.close();
    Shape& shape = drawing.shape;
    if (shape.lines_.empty()) {
        return std::nullopt;
    }
    const Point first = shape.lines_.front().from;
    shape.x_ = {first.x, first.x};
    shape.y_ = {first.y, first.y};
    for (const Line& line : shape.lines_) {
        shape.x_ = {std::min(shape.x_.from, line.to.x), std::max(shape.x_.to, line.to.x)};
        shape.y_ = {std::min(shape.y_.from, line.to.y), std::max(shape.y_.to, line.to.y)};
    }
    return std::move(shape);
}

std::vector<Span> Shape::across(double y) const {
    std::vector<std::pair<double, int>> crossings;
    for (const auto& [from, to] : lines_) {
        if ((from.y <= y) != (to.y <= y)) {
            crossings.emplace_back(from.x + (to.x - from.x) * (y - from.y) / (to.y - from.y),
                                   from.y <= y ? 1 : -1);
        }
    }
    return spansOf(crossings);
}

std::vector<Span> Shape::upright(double x) const {
    std::vector<std::pair<double, int>> crossings;
    for (const auto& [from, to] : lines_) {
        if ((from.x <= x) != (to.x <= x)) {
            crossings.emplace_back(from.y + (to.y - from.y) * (x - from.x) / (to.x - from.x),
                                   from.x <= x ? 1 : -1);
        }
    }
    return spansOf(crossings);
}

} // namespace faces
