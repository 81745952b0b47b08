// SPDX-License-Identifier: MIT
// What draw routines draw on, and how they measure: without a toolkit, and as a record.
#pragma once

#include "adm/types.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host {

/// [main-thread] Sizes of text as a view would draw it, in pixels. Implementations do not throw.
class TextMetrics {
public:
    virtual ~TextMetrics() = default;
    [[nodiscard]] virtual std::int32_t width(std::string_view utf8) const = 0;
    [[nodiscard]] virtual std::int32_t lineHeight() const = 0;
};

/// Every character is seven pixels wide, every line sixteen high.
class FixedMetrics : public TextMetrics {
public:
    [[nodiscard]] std::int32_t width(std::string_view utf8) const override;
    [[nodiscard]] std::int32_t lineHeight() const override { return 16; }
};

/// A colour of the desktop, or one in bytes: red, green, blue, opacity, from the highest down.
using Color = std::variant<ADMColor, std::uint32_t>;

/// [main-thread] What one call of a draw routine draws on; lives as long as the call. Coordinates
/// are relative to its bounds.
class Canvas {
public:
    virtual ~Canvas() = default;
    virtual void fill(const Color& color, const ADMRect& rect) = 0;
    virtual void line(const Color& color, const ADMPoint& from, const ADMPoint& to) = 0;
    virtual void text(const Color& color, std::string_view utf8, const ADMPoint& point) = 0;
    /// False when there is no such picture.
    virtual bool picture(std::int32_t pictureID, const ADMPoint& point) = 0;
};

/// One thing that was drawn; `text` is empty unless it was a text.
struct Drawn {
    enum class Kind : std::uint8_t { Fill, Line, Text, Picture };
    Kind kind = Kind::Fill;
    Color color = kADMTextColor;
    ADMRect area{}; ///< of a text or picture only the upper left corner
    std::string text;
    std::int32_t pictureID = 0;
};
bool operator==(const Drawn& left, const Drawn& right);

/// Keeps what is drawn.
class RecordingCanvas : public Canvas {
public:
    void fill(const Color& color, const ADMRect& rect) override;
    void line(const Color& color, const ADMPoint& from, const ADMPoint& to) override;
    void text(const Color& color, std::string_view utf8, const ADMPoint& point) override;
    bool picture(std::int32_t pictureID, const ADMPoint& point) override;

    const std::vector<Drawn>& drawn() const noexcept { return drawn_; }
    /// The texts alone, line by line, with commas between columns: what a row says to someone who
    /// cannot see it.
    [[nodiscard]] std::string words() const;

private:
    std::vector<Drawn> drawn_;
};

} // namespace host
