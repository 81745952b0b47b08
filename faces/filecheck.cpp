// SPDX-License-Identifier: MIT
// Looks at table lists and segment lengths only.
#include "faces/filecheck.h"

#include "faces/remark.h"
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
    const auto header = bytes.part<12>(start, marked("the font header"));
    const unsigned count = (unsigned{header[4]} << 8U) | header[5];
    for (unsigned i = 0; i < count; ++i) {
        const auto entry =
            bytes.part<16>(start + 12 + std::int64_t{i} * 16, marked("the table list"));
        if (std::find(essentialTables.begin(), essentialTables.end(), number32(entry.data())) ==
            essentialTables.end()) {
            continue;
        }
        const std::int64_t end =
            std::int64_t{number32(&entry[8])} + std::int64_t{number32(&entry[12])};
        if (end > bytes.size()) {
            throw bytes.error(FontFault::TableBeyondEnd,
                              {std::string(entry.begin(), entry.begin() + 4), std::to_string(end),
                               std::to_string(bytes.size())});
        }
    }
}

// More fonts in one file than anybody ships; keeps a forged count from costing minutes.
constexpr std::uint32_t maximumFontsInCollection = 4096;

void checkCollection(const FontBytes& bytes) {
    const auto header = bytes.part<12>(0, marked("the collection header"));
    const std::uint32_t count = number32(&header[8]);
    if (count == 0 || count > maximumFontsInCollection) {
        throw bytes.error(FontFault::CountOfFonts, {std::to_string(count)});
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto offset =
            bytes.part<4>(12 + std::int64_t{i} * 4, marked("the collection header"));
        checkTables(bytes, number32(offset.data()));
    }
}

// Segments of a binary Type 1 font: 0x80, kind, length (little-endian); kind 3 ends the file.
void checkType1Segments(const FontBytes& bytes) {
    std::int64_t position = 0;
    for (;;) {
        const auto start = bytes.part<2>(position, marked("a Type 1 segment"));
        if (start[0] != 0x80) {
            throw bytes.error(FontFault::NoSegment, {std::to_string(position)});
        }
        if (start[1] == 3) {
            return;
        }
        const auto header = bytes.part<6>(position, marked("a Type 1 segment"));
        const std::uint32_t length = (std::uint32_t{header[5]} << 24U) |
                                     (std::uint32_t{header[4]} << 16U) |
                                     (std::uint32_t{header[3]} << 8U) | header[2];
        position += 6 + std::int64_t{length};
        if (position > bytes.size()) {
            throw bytes.error(FontFault::SegmentBeyondEnd,
                              {std::to_string(position), std::to_string(bytes.size())});
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
        throw UnreadableNow(
            path + ": " +
            textOf(FontFault::CannotBeRead, {std::generic_category().message(errno)}));
    };
    if (!file || fstat(file.get(), &status) != 0) {
        refuse();
    }
    if (!S_ISREG(status.st_mode)) {
        throw error(FontFault::NotRegular);
    }
    if (status.st_size == 0) {
        throw error(FontFault::Empty);
    }
    if (status.st_size > maximumFontFileSize) {
        throw error(FontFault::TooLarge, {std::to_string(maximumFontFileSize >> 20)});
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
    const auto start = bytes.part<4>(0, marked("the font header"));
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
    throw bytes.error(FontFault::NotAFont);
}

} // namespace faces
