// SPDX-License-Identifier: MIT
// What is the same for all instances of a font is read once.
#include "faces/facereader.h"

#include "faces/classify.h"
#include "faces/fonttables.h"
#include "faces/measure.h"
#include "faces/namedecoder.h"
#include "faces/nametable.h"
#include "faces/stylewords.h"
#include "faces/variations.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include FT_FONT_FORMATS_H
#include FT_MULTIPLE_MASTERS_H
#include FT_TYPE1_TABLES_H
#include <new>
#include <string_view>
#include <utility>

namespace faces {

namespace {

struct FaceDeleter {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using OpenFace = std::unique_ptr<std::remove_pointer_t<FT_Face>, FaceDeleter>;

OpenFace openFace(FT_Library library, std::span<const std::uint8_t> bytes, long number) {
    FT_Face face = nullptr;
    const FT_Error error = FT_New_Memory_Face(library, bytes.data(),
                                              static_cast<FT_Long>(bytes.size()), number, &face);
    return OpenFace(error == 0 ? face : nullptr);
}

std::string orEmpty(const char* text) {
    return text == nullptr ? std::string() : text;
}

std::string versionOf(const NameTable& names, std::uint32_t revision) {
    constexpr std::string_view word = "version";
    std::string_view text = names.text(NameId::Version);
    const bool begins = text.size() > word.size() &&
                        std::equal(word.begin(), word.end(), text.begin(), [](char a, char b) {
                            return a == std::tolower(static_cast<unsigned char>(b));
                        });
    text.remove_prefix(begins ? word.size() : 0);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (!text.empty() || revision == 0) {
        return std::string(text);
    }
    char number[32];
    std::snprintf(number, sizeof number, "%.3f", revision / 65536.0);
    return number;
}

// A font without families in its names goes by what FreeType makes of it, or by its file.
void fillNames(Face& face, FT_Face font, const NameTable& names, const std::string& fileName) {
    const std::string style = orEmpty(font->style_name);
    face.names = names.names(style);
    if (face.names.empty()) {
        const std::string family = decodeLiteral(orEmpty(font->family_name));
        face.names.push_back({family.empty() ? fileName : family, style, {}, NameKind::Legacy});
    }
    face.fullNames = names.fullNames();
    face.postScriptName = names.text(NameId::PostScriptName);
    if (face.postScriptName.empty()) {
        face.postScriptName = orEmpty(FT_Get_Postscript_Name(font));
    }
    face.copyright = names.text(NameId::Copyright);
    face.licence = names.text(NameId::Licence);
    face.licenceLink = names.text(NameId::LicenceLink);
    face.foundry = names.text(NameId::Manufacturer);
}

void fillFromPostScript(Face& face, FT_Face font) {
    PS_FontInfoRec info{};
    if (FT_Get_PS_Font_Info(font, &info) != 0) {
        return;
    }
    if (face.fullNames.empty() && info.full_name != nullptr) {
        face.fullNames.push_back(decodeLiteral(info.full_name));
    }
    if (face.copyright.empty()) {
        face.copyright = orEmpty(info.notice);
    }
    if (face.version.empty()) {
        face.version = orEmpty(info.version);
    }
    if (face.technology == Technology::Type1) {
        correctStyle(face.style, orEmpty(info.weight));
        if (info.italic_angle != 0 && face.style.slant == Slant::Upright) {
            face.style.slant = Slant::Italic;
        }
    }
}

// FreeType makes a character map from the names of glyphs where a font of signs has none for
// letters; it is of no table, and so has no format.
bool isSymbolic(FT_Face font) {
    bool signs = false;
    for (int i = 0; i < font->num_charmaps; ++i) {
        FT_CharMap map = font->charmaps[i];
        if (map->encoding == FT_ENCODING_UNICODE && FT_Get_CMap_Format(map) > 0) {
            return false;
        }
        signs = signs || map->encoding == FT_ENCODING_MS_SYMBOL;
    }
    return signs;
}

void fillMeasures(Face& face, FT_Face font, const FontTables& tables) {
    const Measured measured = measure(font);
    face.measures = measured.measures;
    face.monospaced = measured.monospaced;
    face.classification = classify(face, tables.familyClass());
}

std::string alphanumeric(std::string_view text) {
    std::string kept(text);
    std::erase_if(kept, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
    return kept;
}

// A default that is a named instance as well is one face, unless it has two names.
bool isTheDefault(const Instance& instance, const std::vector<Axis>& axes, const Face& face,
                  const Face& base) {
    for (std::size_t i = 0; i < axes.size(); ++i) {
        if (instance.position[i].second != axes[i].initial) {
            return false;
        }
    }
    const auto isNamed = [&](const Name& name) {
        return std::any_of(base.names.begin(), base.names.end(), [&](const Name& other) {
            return other.family == name.family && other.style == name.style;
        });
    };
    return face.postScriptName == base.postScriptName &&
           std::all_of(face.names.begin(), face.names.end(), isNamed);
}

// Not by the instance's number: see Variations for its coordinates.
bool setPosition(FT_Face font, const std::vector<std::pair<std::string, double>>& position) {
    std::vector<FT_Fixed> coordinates;
    coordinates.reserve(position.size());
    for (const auto& [tag, value] : position) {
        coordinates.push_back(static_cast<FT_Fixed>(value * 65536));
    }
    return FT_Set_Var_Design_Coordinates(font, static_cast<FT_UInt>(coordinates.size()),
                                         coordinates.data()) == 0;
}

void addInstances(std::vector<Face>& faces, FT_Face font, const NameTable& names,
                  const Variations& variations, const FontTables& tables) {
    const std::string prefix = [&] {
        std::string_view text = names.text(NameId::VariationsPrefix);
        text = text.empty() ? names.text(NameId::TypographicFamily) : text;
        return alphanumeric(text.empty() ? names.text(NameId::Family) : text);
    }();
    const std::size_t base = faces.size() - 1;
    for (const Instance& instance : variations.instances()) {
        Face face = faces[base];
        face.index |= instance.number << 16U;
        if (auto own = names.instanceNames(static_cast<NameId>(instance.style)); !own.empty()) {
            face.names = std::move(own);
        }
        const std::string_view style = names.text(static_cast<NameId>(instance.style));
        const std::string_view given = names.text(static_cast<NameId>(instance.postScriptName));
        face.postScriptName =
            given.empty() ? prefix + "-" + alphanumeric(style) : std::string(given);
        face.fullNames = {face.names.front().family + " " + face.names.front().style};
        face.position = instance.position;
        face.style = styleAt(instance.position, face.style);
        if (isTheDefault(instance, face.axes, face, faces[base])) {
            continue;
        }
        if (setPosition(font, instance.position)) {
            fillMeasures(face, font, tables);
        }
        faces.push_back(std::move(face));
    }
}

} // namespace

std::optional<Technology> technologyOf(FT_Face face) {
    const std::string_view format = FT_Get_Font_Format(face);
    if (format == "TrueType") {
        return Technology::TrueType;
    }
    if (format == "CFF") {
        return Technology::OpenTypePostScript;
    }
    if (format == "Type 1" || format == "CID Type 1") {
        return Technology::Type1;
    }
    return std::nullopt;
}

FaceReader::FaceReader() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        throw std::bad_alloc();
    }
    library_.reset(library);
}

std::optional<std::vector<Face>> FaceReader::read(std::span<const std::uint8_t> bytes,
                                                  const std::string& fileName) {
    std::vector<Face> faces;
    OpenFace font = openFace(library_.get(), bytes, 0);
    if (!font) {
        return std::nullopt;
    }
    const long count = font->num_faces;
    for (long number = 0; number < count; ++number) {
        font = number == 0 ? std::move(font) : openFace(library_.get(), bytes, number);
        if (font) {
            addFaces(faces, font.get(), bytes, number, fileName);
        }
    }
    return faces;
}

void FaceReader::addFaces(std::vector<Face>& faces, FT_Face font,
                          std::span<const std::uint8_t> bytes, long number,
                          const std::string& fileName) {
    const std::optional<Technology> technology = technologyOf(font);
    if (!technology || (!FT_IS_SCALABLE(font) && !FT_HAS_COLOR(font))) {
        return; // no program of today shows plain bitmaps
    }
    const FontTables tables(font, bytes, number);
    const Variations variations(font);
    const NameTable names(
        font, variations.axes().empty() ? NameTable::Extent::Standard : NameTable::Extent::All,
        decoder_);
    Face& face = faces.emplace_back();
    face.index = static_cast<std::uint32_t>(number);
    face.technology = *technology == Technology::TrueType && tables.hasLayout()
                          ? Technology::OpenTypeTrueType
                          : *technology;
    fillNames(face, font, names, fileName);
    tables.fill(face);
    correctStyle(face.style, face.names.front().style);
    face.version = versionOf(names, face.revision);
    fillFromPostScript(face, font);
    face.symbolic = isSymbolic(font);
    face.colour = FT_HAS_COLOR(font);
    face.glyphs = static_cast<std::uint32_t>(font->num_glyphs);
    face.coverage = tables.coverage();
    const Languages& spoken = languages_.find(face.coverage);
    face.scripts = spoken.scripts;
    face.languages = spoken.languages;
    face.axes = variations.axes(names);
    fillMeasures(face, font, tables);
    addInstances(faces, font, names, variations, tables);
}

} // namespace faces
