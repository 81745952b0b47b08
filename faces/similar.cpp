// SPDX-License-Identifier: MIT
// A sum of differences, each bounded: one odd measure must not outweigh all that is alike.
#include "faces/similar.h"

#include "faces/coverage.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string>

namespace faces {

namespace {

// The greatest difference that a part can make.
constexpr float mostOfAPart = 2;
constexpr float mostOfScripts = 1.5;

/// A part that people have words for.
struct Told {
    std::size_t part;
    float least; ///< difference that is worth telling
    const char* less;
    const char* more;
};
// From here on the thickness of serifs is worth telling, in parts.
constexpr float leastSerif = 1;
constexpr std::array tellable = {
    Told{15, 1, marked("not monospaced"), marked("monospaced")},
    Told{14, 1, marked("upright"), marked("slanted")},
    Told{10, 1, marked("without serifs"), marked("with serifs")},
    Told{16, 1, marked("thinner serifs"), marked("thicker serifs")},
    Told{8, 1, marked("lighter"), marked("bolder")},
    Told{0, 3, marked("narrower"), marked("wider")},
    Told{1, 1.5, marked("smaller letters"), marked("larger letters")},
};

} // namespace

// The divisors come from families that are copies of each other, set by the recall that
// benchmarks/faces states. The width of letters has the smallest: a line of text keeps its length
// only with it, and whoever copies a design for its metrics copies them to the unit. All other
// lengths are taken in x-heights, so that a design is known again when it is drawn smaller on its
// em square; that itself is two parts. What a font says of its style counts less than what is
// measured, as many say little.
std::optional<Likeness> likenessOf(const Face& face) {
    if (!face.measures || face.measures->xHeight <= 0 || face.measures->letterWidth <= 0) {
        return std::nullopt;
    }
    const Measures& measures = *face.measures;
    const double height = measures.xHeight;
    const double width = measures.letterWidth;
    const auto part = [](double value, double difference) {
        return static_cast<float>(value / difference);
    };
    // Strokes without serifs are as even as those of a slab.
    const double serifThickness =
        measures.serifThickness > 0 && measures.serifThickness < measures.stem
            ? measures.serifThickness / measures.stem
            : 1;
    Likeness likeness;
    likeness.parts = {
        part(width, 0.008),
        part(height, 0.02),
        part(width / height, 0.02),
        part(measures.capitalWidth / width, 0.025),
        part(measures.digitWidth / width, 0.025),
        part(measures.capitalHeight / height, 0.05),
        part(measures.ascender / height, 0.06),
        part(measures.descender / height, 0.06),
        part(measures.stem / height, 0.025),
        part(measures.contrast, 0.15),
        part(std::min(measures.serif / height, 0.2), 0.04),
        part(measures.slant, 4),
        part(measures.roundness, 0.03),
        part(face.style.weight, 200),
        part(face.style.slant == Slant::Upright ? 0 : 1, 0.5),
        part(face.monospaced ? 1 : 0, 0.33),
        part(serifThickness, 0.15),
    };
    for (const std::string& script : face.scripts) {
        unsigned bit = 0;
        for (const char c : script) {
            bit = bit * 31 + static_cast<unsigned char>(c);
        }
        likeness.scripts |= std::uint64_t{1} << (bit % 64);
    }
    return likeness;
}

// A script that is lacking may be needed; one that is more tells that the compared letters may be a
// guest's, taken over from a font for them.
float distance(const Likeness& one, const Likeness& other) {
    constexpr float lackingScript = 0.5F;
    constexpr float furtherScript = 0.25F;
    const float scripts =
        lackingScript * static_cast<float>(std::popcount(one.scripts & ~other.scripts)) +
        furtherScript * static_cast<float>(std::popcount(other.scripts & ~one.scripts));
    float sum = std::min(scripts, mostOfScripts);
    for (std::size_t i = 0; i < one.parts.size(); ++i) {
        sum += std::min(std::abs(one.parts[i] - other.parts[i]), mostOfAPart);
    }
    return sum;
}

Remarks differences(const Likeness& one, const Likeness& other) {
    Remarks remarks;
    for (const auto& [part, least, less, more] : tellable) {
        const float difference = other.parts[part] - one.parts[part];
        const bool known = part != 16 || std::min(one.parts[10], other.parts[10]) >= leastSerif;
        if (known && std::abs(difference) >= least) {
            remarks.push_back({difference < 0 ? less : more});
        }
    }
    return remarks;
}

std::vector<SimilarFace> similarFaces(const Likeness& wanted, std::span<const Likeness> faces,
                                      std::size_t count) {
    std::vector<SimilarFace> all(faces.size());
    for (std::size_t i = 0; i < faces.size(); ++i) {
        all[i] = {i, distance(wanted, faces[i])};
    }
    const auto last = all.begin() + static_cast<std::ptrdiff_t>(std::min(count, all.size()));
    std::partial_sort(all.begin(), last, all.end(), [](const SimilarFace& a, const SimilarFace& b) {
        return a.distance < b.distance || (a.distance == b.distance && a.place < b.place);
    });
    all.erase(last, all.end());
    return all;
}

float distanceOfCoverage(const Coverage& coverage, std::u32string_view text) {
    constexpr float mostOfAll = 2 * 17 * mostOfAPart;
    std::size_t asked = 0;
    std::size_t lacking = 0;
    for (const char32_t character : text) {
        if (character > U' ' && character != U'\u00A0') {
            ++asked;
            lacking += covers(coverage, character) ? 0 : 1;
        }
    }
    return asked == 0 ? 0 : mostOfAll * static_cast<float>(lacking) / static_cast<float>(asked);
}

} // namespace faces
