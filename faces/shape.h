// SPDX-License-Identifier: MIT
// A glyph's outline as straight lines, and what can be measured on it.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <optional>
#include <vector>

namespace faces {

/// From where to where ink reaches along a line.
struct Span {
    double from = 0;
    double to = 0;
    [[nodiscard]] double length() const { return to - from; }
    [[nodiscard]] double middle() const { return (from + to) / 2; }
};

/// An outline in font units, curves drawn with a few straight lines.
class Shape {
public:
    /// nullopt: it has no outline, or one of more lines than a letter needs.
    [[nodiscard]] static std::optional<Shape> of(const FT_Outline& outline);

    [[nodiscard]] Span horizontalExtent() const { return x_; }
    [[nodiscard]] Span verticalExtent() const { return y_; }
    /// The ink on the horizontal line at `y`, from left to right.
    [[nodiscard]] std::vector<Span> across(double y) const;
    /// The ink on the vertical line at `x`, from below.
    [[nodiscard]] std::vector<Span> upright(double x) const;
    /// The area within the greatest contour.
    [[nodiscard]] double area() const { return area_; }

private:
    struct Point {
        double x = 0;
        double y = 0;
    };
    struct Line {
        Point from;
        Point to;
    };
    struct Drawing;

    std::vector<Line> lines_;
    Span x_;
    Span y_;
    double area_ = 0;
};

} // namespace faces
