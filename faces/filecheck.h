// SPDX-License-Identifier: MIT
// A font file in memory, and the check that it is whole before anybody else looks at it.
#pragma once

#include "faces/fontfaults.h"
#include "faces/fontfile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace faces {

/// A file's bytes, mapped. Where the file is cut while it is read, the process gets SIGBUS.
class FontBytes {
public:
    /// Throws UnreadableNow when the file cannot be opened, UnreadableFont when it is none or too
    /// large a one.
    explicit FontBytes(const std::string& path);
    ~FontBytes();
    FontBytes(const FontBytes&) = delete;
    FontBytes& operator=(const FontBytes&) = delete;

    [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(bytes_.size()); }
    [[nodiscard]] std::span<const std::uint8_t> all() const { return bytes_; }
    [[nodiscard]] UnreadableFont error(FontFault fault,
                                       std::initializer_list<std::string_view> values = {}) const {
        return UnreadableFont(path_ + ": " + textOf(fault, values));
    }

    /// Throws UnreadableFont when the file ends before them, inside `what`, a marked text.
    template <std::size_t Count>
    [[nodiscard]] std::array<std::uint8_t, Count> part(std::int64_t offset,
                                                       const char* what) const {
        if (offset + static_cast<std::int64_t>(Count) > size()) {
            throw error(FontFault::EndsInside, {std::to_string(size()), what});
        }
        std::array<std::uint8_t, Count> result{};
        std::copy_n(bytes_.begin() + offset, Count, result.begin());
        return result;
    }

private:
    const std::string& path_;
    std::span<const std::uint8_t> bytes_;
};

enum class Wrapping { Single, Collection };

/// Throws UnreadableFont when a part without which text cannot be set lies beyond the end of the
/// file, or when it is no font at all.
Wrapping checkWhole(const FontBytes& bytes);

} // namespace faces
