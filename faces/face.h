// SPDX-License-Identifier: MIT
// What is known of one face of a font: what it is called, how it looks, what it covers and what its
// licence allows. A plain value, read from a file (faces/fontfile.h) or filled from an index.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace faces {

/// A font's technology. The numbers are kept in indexes on disk.
enum class Technology : std::uint8_t {
    Type1 = 0,
    TrueType = 1,
    OpenTypePostScript = 2,
    OpenTypeTrueType = 3,
};

/// Which pair of name records a name was taken from.
enum class NameKind : std::uint8_t {
    Typographic,      ///< IDs 16 and 17: all styles of a design under one family
    Legacy,           ///< IDs 1 and 2: at most four styles a family
    WeightWidthSlant, ///< IDs 21 and 22
};

/// A family and the style under it, both from one platform's records of one language.
struct Name {
    std::string family;
    std::string style;
    std::string language; ///< as RFC 5646 tags begin, in lower case: "en", "ko"; empty: not told
    NameKind kind = NameKind::Legacy;
    bool operator==(const Name&) const = default;
};

enum class Slant : std::uint8_t { Upright, Italic, Oblique };

/// Where a face stands in its family.
struct Style {
    double weight = 400; ///< 1 to 1000 as in style sheets and OpenType, 400 is regular
    double width = 100;  ///< in per cent of the normal width
    Slant slant = Slant::Upright;
    bool operator==(const Style&) const = default;
};

/// What a person sorts fonts into. The numbers are kept in indexes on disk.
enum class Classification : std::uint8_t {
    Unknown,
    Serif,
    SlabSerif,
    SansSerif,
    Monospaced,
    Script, ///< written by hand
    Decorative,
    Symbol,
};

/// Measured on the outlines, in units of the em square unless said otherwise. Nothing where the
/// face lacks the letters that it is measured on.
struct Measures {
    double xHeight = 0;
    double capitalHeight = 0;
    double ascender = 0;  ///< of the lower-case letters
    double descender = 0; ///< below the baseline, positive
    double letterWidth =
        0; ///< mean advance of the lower-case letters, as often as English has them
    double capitalWidth = 0;   ///< mean advance of the capitals
    double digitWidth = 0;     ///< mean advance of the digits
    double stem = 0;           ///< thickness of vertical strokes
    double contrast = 0;       ///< thinnest stroke to thickest, 0 to 1
    double serif = 0;          ///< reach of serifs beyond the stem; 0 without
    double slant = 0;          ///< of vertical strokes to the right, degrees
    double roundness = 0;      ///< of "o": its area in parts of its box
    double serifThickness = 0; ///< of serifs near their ends; 0 without
    bool operator==(const Measures&) const = default;
};

/// An axis along which a variable font varies.
struct Axis {
    std::string tag;  ///< four characters: "wght"
    std::string name; ///< for people; may be empty
    double minimum = 0;
    double initial = 0;
    double maximum = 0;
    bool hidden = false;
    bool operator==(const Axis&) const = default;
};

/// The characters of a face: ranges from first to last, in order, apart from each other.
using Coverage = std::vector<std::pair<char32_t, char32_t>>;

/// One face. A variable font has one for its defaults, and one for each named instance that is
/// called otherwise.
struct Face {
    std::uint32_t index = 0; ///< place in the file; named instance, from 1, in the upper 16 bits
    Technology technology = Technology::TrueType;
    std::string postScriptName;         ///< as it stands in the file, blanks included; may be empty
    std::vector<std::string> fullNames; ///< each once
    std::vector<Name> names;            ///< at least one; the first is the one to show
    Style style;

    std::string version;        ///< record 5 without "Version ", or the number of `revision`
    std::uint32_t revision = 0; ///< of the font, 16.16
    std::string foundry;        ///< manufacturer, else vendor's tag; may be empty
    std::string copyright;
    std::string licence;                    ///< the text of record 13; may be empty
    std::string licenceLink;                ///< record 14
    std::optional<std::uint16_t> embedding; ///< OS/2 fsType; nullopt: the font has none

    Classification classification = Classification::Unknown;
    std::optional<std::array<std::uint8_t, 10>> panose; ///< where it is not all zero
    bool monospaced = false;
    bool symbolic = false; ///< it has signs in the places of letters
    bool colour = false;
    std::optional<Measures> measures;
    std::uint32_t glyphs = 0;

    std::vector<std::string> scripts;   ///< ISO 15924 of what is covered: "Latn"; in order
    std::vector<std::string> languages; ///< as fontconfig calls those covered whole: "de"; in order
    std::vector<std::string> features;  ///< OpenType tags: "smcp"; in order
    std::vector<Axis> axes;             ///< of a variable font
    std::vector<std::pair<std::string, double>> position; ///< axis tag and value, of an instance
    Coverage coverage;
    bool operator==(const Face&) const = default;
};

} // namespace faces
