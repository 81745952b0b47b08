// SPDX-License-Identifier: MIT
// Checks that a font file is whole, then has fontconfig tell its faces.
#include "faces/fontfile.h"

#include "faces/fontpattern.h"
#include "system/descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <strings.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace faces {

namespace {

struct FontSetDeleter {
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};
using FontSet = std::unique_ptr<FcFontSet, FontSetDeleter>;

/// Reads parts of a file and knows its name and size.
class Source {
public:
    explicit Source(const std::string& path)
        : path_(path), file_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status {};
        if (!file_ || fstat(file_.get(), &status) != 0) {
            throw UnreadableNow(path +
                                ": cannot be read: " + std::generic_category().message(errno));
        }
        if (!S_ISREG(status.st_mode)) {
            throw UnreadableFont(path + ": not a regular file");
        }
        size_ = status.st_size;
    }

    [[nodiscard]] std::int64_t size() const { return size_; }
    [[nodiscard]] UnreadableFont error(const std::string& what) const {
        return UnreadableFont(path_ + ": " + what);
    }

    template <std::size_t Count>
    std::array<std::uint8_t, Count> bytes(std::int64_t offset, const std::string& what) const {
        std::array<std::uint8_t, Count> result{};
        if (offset + static_cast<std::int64_t>(Count) > size_) {
            throw error("ends at byte " + std::to_string(size_) + " inside " + what);
        }
        if (pread(file_.get(), result.data(), Count, offset) != static_cast<ssize_t>(Count)) {
            throw UnreadableNow(path_ + ": cannot be read at byte " + std::to_string(offset));
        }
        return result;
    }

private:
    const std::string& path_;
    sys::Descriptor file_;
    std::int64_t size_ = 0;
};

std::uint32_t number32(const std::uint8_t* bytes) {
    return (std::uint32_t{bytes[0]} << 24U) | (std::uint32_t{bytes[1]} << 16U) |
           (std::uint32_t{bytes[2]} << 8U) | bytes[3];
}

constexpr std::uint32_t tag(const char (&text)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = (value << 8U) | static_cast<unsigned char>(text[i]);
    }
    return value;
}

// Tables without which text cannot be set. Fonts with a damaged table of another kind are common
// and work, so those are not looked at.
constexpr std::array essentialTables = {
    tag("head"), tag("name"), tag("cmap"), tag("maxp"), tag("hhea"),
    tag("glyf"), tag("loca"), tag("CFF "), tag("CFF2"),
};

void checkTables(const Source& source, std::int64_t start) {
    const auto header = source.bytes<12>(start, "the font header");
    const unsigned count = (unsigned{header[4]} << 8U) | header[5];
    for (unsigned i = 0; i < count; ++i) {
        const auto entry = source.bytes<16>(start + 12 + std::int64_t{i} * 16, "the table list");
        if (std::find(essentialTables.begin(), essentialTables.end(), number32(entry.data())) ==
            essentialTables.end()) {
            continue;
        }
        const std::int64_t end =
            std::int64_t{number32(&entry[8])} + std::int64_t{number32(&entry[12])};
        if (end > source.size()) {
            throw source.error("table '" + std::string(entry.begin(), entry.begin() + 4) +
                               "' reaches byte " + std::to_string(end) + " of a file of " +
                               std::to_string(source.size()) + " bytes");
        }
    }
}

enum class Wrapping { Single, Collection };

// More fonts in one file than anybody ships; keeps a forged count from costing minutes.
constexpr std::uint32_t maximumFontsInCollection = 4096;

void checkCollection(const Source& source) {
    const auto header = source.bytes<12>(0, "the collection header");
    const std::uint32_t count = number32(&header[8]);
    if (count == 0 || count > maximumFontsInCollection) {
        throw source.error("a collection of " + std::to_string(count) + " fonts");
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto offset = source.bytes<4>(12 + std::int64_t{i} * 4, "the collection header");
        checkTables(source, number32(offset.data()));
    }
}

// Segments of a binary Type 1 font: 0x80, kind, length (little-endian); kind 3 ends the file.
void checkType1Segments(const Source& source) {
    std::int64_t position = 0;
    for (;;) {
        const auto start = source.bytes<2>(position, "a Type 1 segment");
        if (start[0] != 0x80) {
            throw source.error("no Type 1 segment at byte " + std::to_string(position));
        }
        if (start[1] == 3) {
            return;
        }
        const auto header = source.bytes<6>(position, "a Type 1 segment");
        const std::uint32_t length = (std::uint32_t{header[5]} << 24U) |
                                     (std::uint32_t{header[4]} << 16U) |
                                     (std::uint32_t{header[3]} << 8U) | header[2];
        position += 6 + std::int64_t{length};
        if (position > source.size()) {
            throw source.error("a Type 1 segment reaches byte " + std::to_string(position) +
                               " of a file of " + std::to_string(source.size()) + " bytes");
        }
        if (position == source.size()) {
            return; // fonts without the end mark are common
        }
    }
}

Wrapping checkWhole(const Source& source) {
    if (source.size() == 0) {
        throw source.error("an empty file");
    }
    if (source.size() > maximumFontFileSize) {
        throw source.error("larger than " + std::to_string(maximumFontFileSize >> 20) + " MiB");
    }
    const auto start = source.bytes<4>(0, "the font header");
    const std::uint32_t magic = number32(start.data());
    if (magic == tag("ttcf")) {
        checkCollection(source);
        return Wrapping::Collection;
    }
    if (magic == 0x00010000 || magic == tag("OTTO") || magic == tag("true")) {
        checkTables(source, 0);
        return Wrapping::Single;
    }
    if (start[0] == 0x80 && start[1] == 1) {
        checkType1Segments(source);
        return Wrapping::Single;
    }
    if (start[0] == '%' && start[1] == '!') {
        return Wrapping::Single;
    }
    throw source.error("not a TrueType, OpenType or Type 1 font (byte 0)");
}

// Families and styles stand in parallel lists; a face with fewer styles than families repeats the
// first.
std::vector<Name> namesOf(const FcPattern* pattern) {
    std::vector<Name> names;
    for (int i = 0;; ++i) {
        Name name{textOf(pattern, FC_FAMILY, i), textOf(pattern, FC_STYLE, i), {}};
        if (name.family.empty()) {
            return names;
        }
        if (name.style.empty()) {
            name.style = textOf(pattern, FC_STYLE, 0);
        }
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(std::move(name));
        }
    }
}

} // namespace

bool hasFontFileName(std::string_view name) {
    static constexpr std::array<const char*, 7> endings = {"ttf", "otf", "ttc", "otc",
                                                           "pfb", "pfa", "t1"};
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) {
        return false;
    }
    const std::string ending(name.substr(dot + 1));
    return std::any_of(endings.begin(), endings.end(),
                       [&](const char* known) { return strcasecmp(ending.c_str(), known) == 0; });
}

FontFileContents readFontFile(const std::string& path) {
    const Source source(path);
    FontFileContents contents;
    contents.collection = checkWhole(source) == Wrapping::Collection;

    const FontSet set(FcFontSetCreate());
    int count = 0;
    FcFreeTypeQueryAll(reinterpret_cast<const FcChar8*>(path.c_str()), static_cast<unsigned>(-1),
                       nullptr, &count, set.get());
    for (int i = 0; i < set->nfont; ++i) {
        const FcPattern* pattern = set->fonts[i];
        FcBool variable = FcFalse;
        // The pattern of all instances at once has ranges in place of a style and a name; the
        // instances themselves follow it.
        if (FcPatternGetBool(pattern, FC_VARIABLE, 0, &variable) == FcResultMatch &&
            variable == FcTrue) {
            continue;
        }
        const std::optional<Technology> type = technologyOf(pattern);
        Face face;
        face.names = namesOf(pattern);
        if (!type || face.names.empty()) {
            continue;
        }
        int index = 0;
        FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
        face.index = static_cast<std::uint32_t>(index);
        face.technology = *type;
        face.postScriptName = textOf(pattern, FC_POSTSCRIPT_NAME, 0);
        contents.faces.push_back(std::move(face));
    }
    if (contents.faces.empty()) {
        throw source.error(set->nfont > 0 ? "no face with a name and a supported format"
                                          : "FreeType finds no font in it");
    }
    return contents;
}

} // namespace faces
