// SPDX-License-Identifier: MIT
// Makes small, whole font files with any names, from a font of this project.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace testsupport {

/// A record of a name table as it stands in the file.
struct RawName {
    unsigned platform = 3;
    unsigned encoding = 1;
    unsigned language = 0x409;
    unsigned id = 1;
    std::string bytes;
};

/// UTF-16BE, as most records have it.
std::string wide(const std::string& utf8);

struct FontRecipe {
    std::string family = "Test Sans"; ///< UTF-8; the legacy family when a typographic one is given
    std::string style = "Regular";
    std::string postScriptName = "TestSans-Regular";
    bool layout = false;                ///< with a layout table, which makes it OpenType
    std::string typographicFamily = {}; ///< empty: none
    std::string typographicStyle = {};
    /// Names of a variable font's instances, without the first. Letters are wider by an em at the
    /// heaviest.
    std::vector<std::string> instances = {};
    bool slanting = false; ///< the instances lean, by 1 degree, 2, ..., in place of being heavier
    std::size_t weight = 400;
    std::size_t widthClass = 5; ///< 1 to 9, from ultra-condensed to ultra-expanded
    bool italic = false;
    std::size_t revision = 0x10000; ///< 16.16
    /// Further family names with their Windows language; the style stays without a translation.
    std::map<std::size_t, std::string> translatedFamilies = {};
    std::string fullName = {};       ///< empty: family and style
    std::vector<RawName> names = {}; ///< all the records, in place of those that the others make
    std::string png = {}; ///< 16 pixels wide and high: what every glyph is instead of its outline
};

/// A TrueType font's bytes.
std::string makeFont(const FontRecipe& recipe);
/// A collection of these.
std::string makeCollection(const std::vector<FontRecipe>& recipes);

} // namespace testsupport
