// SPDX-License-Identifier: MIT
// A line of text to be drawn in a face, and what came of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace preview {

struct AxisValue {
    std::string tag; ///< four bytes: "wght"
    double value = 0;
    bool operator==(const AxisValue&) const = default;
};

struct Request {
    std::string file;
    /// The face's place in its file; a named instance in the upper 16 bits, counted from 1.
    std::uint32_t face = 0;
    /// In the face's own units; what is beyond an axis' ends is drawn at its end. Axes that the
    /// face lacks are passed over.
    std::vector<AxisValue> axes = {};
    std::vector<std::string> features = {}; ///< "smcp", "liga=0"
    std::string text = {};                  ///< UTF-8
    /// Where the face lacks a character of `text`, the first of these that it has whole is drawn.
    std::vector<std::string> others = {};
    bool orOwn = false;        ///< and where it has none, characters that it has
    std::uint32_t pixels = 24; ///< the em's height
    double scale = 1;          ///< of the screen: a picture is this much larger
};

enum class PixelForm : std::uint8_t {
    Grey,   ///< a byte: how much of the pixel the text covers, for any colour of text
    Colour, ///< four: red, green, blue, alpha, multiplied by alpha; outlines in it are black
};

struct Picture {
    PixelForm form = PixelForm::Grey;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::int32_t baseline = 0; ///< rows from the top to the line that letters stand on
    std::string pixels = {};   ///< from the top, rows without gaps
};

struct Answer {
    std::string problem = {};    ///< "PATH: ..."; empty: there is a picture
    Picture picture = {};        ///< a line too long for the limits is cut at its right
    std::u32string missing = {}; ///< each character of the text that the face lacks, once
    std::string drawn = {};      ///< the text that is in the picture
};

inline constexpr std::uint32_t maximumPixels = 256;
inline constexpr double minimumScale = 0.125;
inline constexpr double maximumScale = 4;
inline constexpr double maximumAxisValue = 32767; ///< and its negative
inline constexpr std::size_t maximumPath = 4096;
inline constexpr std::size_t maximumText = 4096;
inline constexpr std::size_t maximumOthers = 4;
inline constexpr std::size_t maximumAxes = 64;
inline constexpr std::size_t maximumFeatures = 64;
inline constexpr std::size_t maximumFeature = 64;
inline constexpr std::size_t maximumArea = std::size_t{4} << 20U; ///< pixels of a picture

/// What of these limits a request oversteps, as a sentence; empty: nothing.
[[nodiscard]] std::string overstepped(const Request& request);

} // namespace preview
