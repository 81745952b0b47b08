// SPDX-License-Identifier: MIT
// The text of a drawing with its faces, to see whether an edit had the effect that it should have.
#pragma once

#include "host/documents/svg/svgdrawing.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace host::svg {

/// The family of each list that begins with one, read once.
class FirstFamilies {
public:
    std::string_view of(const Drawing& drawing, const Style& style) {
        const auto [place, added] = known_.try_emplace(style.value(css::Property::Family));
        if (added) {
            auto families = css::readFamilies(drawing.styles.texts[place->first]);
            if (!families.empty()) {
                place->second = std::move(families.front().name);
            }
        }
        return place->second;
    }

private:
    std::unordered_map<std::uint32_t, std::string> known_;
};

/// The text of a drawing with the face of each part, blanks left out.
struct FacedText {
    using Key = std::tuple<std::string_view, std::uint32_t, std::uint32_t, std::uint32_t>;
    struct Part {
        Key key;
        std::size_t end; ///< in the text
        std::size_t piece;
    };
    std::string text;
    std::vector<Part> parts;

    void add(const Key& key, std::string_view characters, std::size_t piece) {
        std::copy_if(characters.begin(), characters.end(), std::back_inserter(text),
                     [](char c) { return static_cast<unsigned char>(c) > 0x20; });
        parts.push_back({key, text.size(), piece});
    }

    /// The pieces of this text that have another face in `other`. @param other of the same text
    std::vector<std::size_t> differences(const FacedText& other) const {
        std::vector<std::size_t> result;
        std::size_t theirs = 0;
        std::size_t position = 0;
        for (const Part& part : parts) {
            bool same = true;
            for (; position < part.end; position = std::min(part.end, other.parts[theirs].end)) {
                while (other.parts[theirs].end <= position) {
                    ++theirs;
                }
                same = same && other.parts[theirs].key == part.key;
            }
            if (!same) {
                result.push_back(part.piece);
            }
        }
        return result;
    }
};

} // namespace host::svg
