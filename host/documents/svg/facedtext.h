// SPDX-License-Identifier: MIT
// The text of a drawing with its faces, to see whether an edit had the effect that it should have.
#pragma once

#include "host/documents/svg/svgdrawing.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace host::svg {

/// The family of each list that begins with one, read once.
class FirstFamilies {
public:
    std::string_view of(const Drawing& drawing, const Style& style);

private:
    std::unordered_map<std::uint32_t, std::string> known_;
};

[[nodiscard]] const Style& styleOf(const Drawing& drawing, std::size_t piece);
[[nodiscard]] bool isReference(const Drawing& drawing, std::size_t piece);
/// Whether the face of a piece matters to anyone.
[[nodiscard]] bool counts(const Drawing& drawing, std::size_t piece);

/// The text of a drawing with the face of each part, blanks left out.
class FacedText {
public:
    /// `drawing` and `families` outlive this. `wanted` has by piece a face in the place of its own,
    /// or nullptr; it is empty when all keep theirs.
    FacedText(const Drawing& drawing, FirstFamilies& families, std::span<const Face* const> wanted);

    [[nodiscard]] bool hasTextOf(const FacedText& other) const { return text_ == other.text_; }
    /// The pieces of this text that have another face in `other`, which has the same text.
    [[nodiscard]] std::vector<std::size_t> differences(const FacedText& other) const;

private:
    using Key = std::tuple<std::string_view, std::uint32_t, std::uint32_t, std::uint32_t>;
    struct Part {
        Key key;
        std::size_t end; ///< in the text
        std::size_t piece;
    };
    void add(const Key& key, std::string_view characters, std::size_t piece);

    std::string text_;
    std::vector<Part> parts_;
};

} // namespace host::svg
