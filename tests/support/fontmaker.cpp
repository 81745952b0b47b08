// SPDX-License-Identifier: MIT
// Replaces the name table of the base font, and adds tables. All numbers in fonts are big-endian.
#include "tests/support/fontmaker.h"

#include "tests/support/temporaryfolder.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string_view>

namespace testsupport {

namespace {

using Tables = std::map<std::string, std::string>;

std::string u16(std::size_t value) {
    return {static_cast<char>(value >> 8U), static_cast<char>(value)};
}
std::string u32(std::size_t value) {
    return u16(value >> 16U) + u16(value & 0xFFFFU);
}

std::size_t number(std::string_view bytes, std::size_t offset, std::size_t length) {
    std::size_t value = 0;
    for (const char c : bytes.substr(offset, length)) {
        value = (value << 8U) | static_cast<unsigned char>(c);
    }
    return value;
}

Tables baseTables() {
    const std::string font = contentOf(GLYPHORA_BASE_FONT);
    Tables tables;
    for (std::size_t i = 0; i < number(font, 4, 2); ++i) {
        const std::size_t entry = 12 + i * 16;
        tables[font.substr(entry, 4)] =
            font.substr(number(font, entry + 8, 4), number(font, entry + 12, 4));
    }
    return tables;
}

constexpr std::size_t firstInstanceName = 256;

std::string nameTable(const std::vector<RawName>& names) {
    std::string records;
    std::string texts;
    for (const RawName& name : names) {
        records += u16(name.platform) + u16(name.encoding) + u16(name.language) + u16(name.id) +
                   u16(name.bytes.size()) + u16(texts.size());
        texts += name.bytes;
    }
    return u16(0) + u16(names.size()) + u16(6 + records.size()) + records + texts;
}

std::string nameTable(const FontRecipe& recipe) {
    if (!recipe.names.empty()) {
        return nameTable(recipe.names);
    }
    std::map<std::size_t, std::string> names = {
        {1, recipe.family},
        {2, recipe.style},
        {4, recipe.fullName.empty() ? recipe.family + " " + recipe.style : recipe.fullName},
        {6, recipe.postScriptName}};
    if (!recipe.typographicFamily.empty()) {
        names[16] = recipe.typographicFamily;
        names[17] = recipe.typographicStyle;
    }
    for (std::size_t i = 0; i < recipe.instances.size(); ++i) {
        names[firstInstanceName + i] = recipe.instances[i];
    }
    std::vector<RawName> records;
    for (const auto& [language, family] : recipe.translatedFamilies) {
        records.push_back(
            {.language = static_cast<unsigned>(language), .id = 1, .bytes = wide(family)});
    }
    for (const auto& [id, name] : names) {
        records.push_back({.id = static_cast<unsigned>(id), .bytes = wide(name)});
    }
    return nameTable(records);
}

// A weight axis from 100 to 900 at 400, and an instance per name at 500, 600, ...; or one of slant.
std::string variationTable(const FontRecipe& recipe) {
    const auto fixed = [](std::size_t value) { return u32(value << 16U); };
    std::string table = u32(0x00010000) + u16(16) + u16(2) + u16(1) + u16(20) +
                        u16(recipe.instances.size()) + u16(8);
    table += recipe.slanting ? "slnt" + fixed(0U - 10U) + fixed(0) + fixed(0)
                             : "wght" + fixed(100) + fixed(400) + fixed(900);
    table += u16(0) + u16(2);
    for (std::size_t i = 0; i < recipe.instances.size(); ++i) {
        table += u16(firstInstanceName + i) + u16(0) +
                 fixed(recipe.slanting ? ~i : 500 + i * 100); // -1, -2, ...
    }
    return table;
}

// No outline varies.
std::string glyphVariations(std::size_t glyphs) {
    return u32(0x00010000) + u16(1) + u16(0) + u32(20 + (glyphs + 1) * 2) + u16(glyphs) + u16(0) +
           u32(20 + (glyphs + 1) * 2) + std::string((glyphs + 1) * 2, '\0');
}

// An advance that grows by 1000 units for each glyph towards the axis' end.
std::string advanceVariations(std::size_t glyphs) {
    std::string table = u32(0x00010000) + u32(20) + u32(0) + u32(0) + u32(0);
    table += u16(1) + u32(12) + u16(1) + u32(22);                  // the store: regions, data
    table += u16(1) + u16(1) + u16(0) + u16(0x4000) + u16(0x4000); // one region, peak at the end
    table += u16(glyphs) + u16(1) + u16(1) + u16(0);
    for (std::size_t i = 0; i < glyphs; ++i) {
        table += u16(1000);
    }
    return table;
}

// One strike of 16 pixels, where each glyph has the same picture.
void addPictures(Tables& tables, const std::string& png) {
    const std::size_t glyphs = number(tables["maxp"], 4, 2);
    const std::string lineMetrics = "\x0E\xFE\x10" + std::string(9, '\0');
    const std::string glyphMetrics("\x10\x10\0\x0E\x10\0\0\x10", 8);
    tables["CBLC"] = u32(0x00030000) + u32(1) + u32(56) + u32(28) + u32(1) + u32(0) + lineMetrics +
                     lineMetrics + u16(0) + u16(glyphs - 1) + "\x10\x10\x20\x01" + u16(0) +
                     u16(glyphs - 1) + u32(8) + u16(2) + u16(19) + u32(4) + u32(4 + png.size()) +
                     glyphMetrics;
    tables["CBDT"] = u32(0x00030000);
    for (std::size_t i = 0; i < glyphs; ++i) {
        tables["CBDT"] += u32(png.size()) + png;
    }
    tables.erase("glyf");
    tables.erase("loca");
}

Tables tablesOf(const FontRecipe& recipe) {
    Tables tables = baseTables();
    for (const char* unwanted : {"GSUB", "GPOS", "DSIG"}) {
        tables.erase(unwanted);
    }
    tables["name"] = nameTable(recipe);
    tables["OS/2"].replace(4, 4, u16(recipe.weight) + u16(recipe.widthClass));
    tables["OS/2"].replace(62, 2, u16(recipe.italic ? 0x01 : 0x40)); // regular otherwise
    tables["head"].replace(4, 4, u32(recipe.revision));
    tables["head"].replace(44, 2, u16(recipe.italic ? 0x02 : 0));
    if (recipe.layout) {
        // One script without features.
        tables["GSUB"] = u32(0x00010000) + u16(10) + u16(22) + u16(24) + u16(1) + "latn" + u16(8) +
                         u16(0) + u16(0) + u16(0) + u16(0);
    }
    if (!recipe.instances.empty()) {
        tables["fvar"] = variationTable(recipe);
        tables["gvar"] = glyphVariations(number(tables["maxp"], 4, 2));
        tables["HVAR"] = advanceVariations(number(tables["maxp"], 4, 2));
    }
    if (!recipe.png.empty()) {
        addPictures(tables, recipe.png);
    }
    return tables;
}

// A font whose file begins `start` bytes before it.
std::string assemble(const Tables& tables, std::size_t start) {
    std::string directory = u32(0x00010000) + u16(tables.size()) + u16(0) + u16(0) + u16(0);
    std::string data;
    const std::size_t dataStart = start + 12 + tables.size() * 16;
    for (const auto& [tag, bytes] : tables) {
        directory += tag + u32(0) + u32(dataStart + data.size()) + u32(bytes.size());
        data += bytes;
        data.resize((data.size() + 3) / 4 * 4);
    }
    return directory + data;
}

} // namespace

// A path changes the encoding of its text by the standard library.
std::string wide(const std::string& utf8) {
    std::string result;
    for (const char16_t unit : std::filesystem::path(utf8).u16string()) {
        result += u16(unit);
    }
    return result;
}

std::string makeFont(const FontRecipe& recipe) {
    return assemble(tablesOf(recipe), 0);
}

std::string makeCollection(const std::vector<FontRecipe>& recipes) {
    std::string header = "ttcf" + u32(0x00010000) + u32(recipes.size());
    std::string fonts;
    const std::size_t headerSize = header.size() + recipes.size() * 4;
    for (const FontRecipe& recipe : recipes) {
        header += u32(headerSize + fonts.size());
        fonts += assemble(tablesOf(recipe), headerSize + fonts.size());
    }
    return header + fonts;
}

} // namespace testsupport
