// SPDX-License-Identifier: MIT
// Looks at table lists and segment lengths only.
#include "faces/filecheck.h"

#include "system/descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>

namespace faces {

namespace {

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

void checkTables(const FontBytes& bytes, std::int64_t start) {
    const auto header = bytes.part<12>(start, "the font header");
    const unsigned count = (unsigned{header[4]} << 8U) | header[5];
    for (unsigned i = 0; i < count; ++i) {
        const auto entry = bytes.part<16>(start + 12 + std::int64_t{i} * 16, "the table list");
        if (std::find(essentialTables.begin(), essentialTables.end(), number32(entry.data())) ==
            essentialTables.end()) {
            continue;
        }
        const std::int64_t end =
            std::int64_t{number32(&entry[8])} + std::int64_t{number32(&entry[12])};
        if (end > bytes.size()) {
            throw bytes.error("table '" + std::string(entry.begin(), entry.begin() + 4) +
                              "' reaches byte " + std::to_string(end) + " of a file of " +
                              std::to_string(bytes.size()) + " bytes");
        }
    }
}

// More fonts in one file than anybody ships; keeps a forged count from costing minutes.
constexpr std::uint32_t maximumFontsInCollection = 4096;

void checkCollection(const FontBytes& bytes) {
    const auto header = bytes.part<12>(0, "the collection header");
    const std::uint32_t count = number32(&header[8]);
    if (count == 0 || count > maximumFontsInCollection) {
        throw bytes.error("a collection of " + std::to_string(count) + " fonts");
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto offset = bytes.part<4>(12 + std::int64_t{i} * 4, "the collection header");
        checkTables(bytes, number32(offset.data()));
    }
}

// Segments of a binary Type 1 font: 0x80, kind, length (little-endian); kind 3 ends the file.
void checkType1Segments(const FontBytes& bytes) {
    std::int64_t position = 0;
    for (;;) {
        const auto start = bytes.part<2>(position, "a Type 1 segment");
        if (start[0] != 0x80) {
            throw bytes.error("no Type 1 segment at byte " + std::to_string(position));
        }
        if (start[1] == 3) {
            return;
        }
        const auto header = bytes.part<6>(position, "a Type 1 segment");
        const std::uint32_t length = (std::uint32_t{header[5]} << 24U) |
                                     (std::uint32_t{header[4]} << 16U) |
                                     (std::uint32_t{header[3]} << 8U) | header[2];
        position += 6 + std::int64_t{length};
        if (position > bytes.size()) {
            throw bytes.error("a Type 1 segment reaches byte " + std::to_string(position) +
                              " of a file of " + std::to_string(bytes.size()) + " bytes");
        }
        if (position == bytes.size()) {
            return; // fonts without the end mark are common
        }
    }
}

} // namespace

FontBytes::FontBytes(const std::string& path) : path_(path) {
    const sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    const auto refuse = [&] {
        throw UnreadableNow(path + ": cannot be read: " + std::generic_category().message(errno));
    };
    if (!file || fstat(file.get(), &status) != 0) {
        refuse();
    }
    if (!S_ISREG(status.st_mode)) {
        throw error("not a regular file");
    }
    if (status.st_size == 0) {
        throw error("an empty file");
    }
    if (status.st_size > maximumFontFileSize) {
        throw error("larger than " + std::to_string(maximumFontFileSize >> 20) + " MiB");
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    void* mapped = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (mapped == MAP_FAILED) {
        refuse();
    }
    bytes_ = {static_cast<const std::uint8_t*>(mapped), size};
}

FontBytes::~FontBytes() {
    if (!bytes_.empty()) {
        // munmap() asks for the right to write, of which it makes no use.
        munmap(const_cast<std::uint8_t*>(bytes_.data()), bytes_.size());
    }
}

Wrapping checkWhole(const FontBytes& bytes) {
    const auto start = bytes.part<4>(0, "the font header");
    const std::uint32_t magic = number32(start.data());
    if (magic == tag("ttcf")) {
        checkCollection(bytes);
        return Wrapping::Collection;
    }
    if (magic == 0x00010000 || magic == tag("OTTO") || magic == tag("true")) {
        checkTables(bytes, 0);
        return Wrapping::Single;
    }
    if (start[0] == 0x80 && start[1] == 1) {
        checkType1Segments(bytes);
        return Wrapping::Single;
    }
    if (start[0] == '%' && start[1] == '!') {
        return Wrapping::Single;
    }
    throw bytes.error("not a TrueType, OpenType or Type 1 font (byte 0)");
}

} // namespace faces
