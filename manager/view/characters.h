// SPDX-License-Identifier: MIT
// The characters that a face has, and finding them by what Unicode calls them.
#pragma once

#include "faces/face.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// "EURO SIGN"; of those without a name what kind they are, as "<control-000A>".
[[nodiscard]] std::string nameOfCharacter(char32_t character);
/// "U+20AC"
[[nodiscard]] std::string codeOfCharacter(char32_t character);
/// In UTF-8.
[[nodiscard]] std::string textOfCharacter(char32_t character);

/// [any-thread] A value that does not change once it was made.
class Characters {
public:
    Characters() = default;
    /// Takes a moment for many thousands. What Unicode has no place for is left out.
    explicit Characters(const faces::Coverage& coverage);

    [[nodiscard]] const std::vector<char32_t>& all() const { return characters_; }
    /// Those that all words of `text` describe, in any order of the words; the letters' case does
    /// not count. A word is the beginning of a word of the name ("arr"; a single letter: all of
    /// it), a code ("U+20AC", "20ac") or the characters themselves ("€"). Whom a code or the
    /// character itself describes comes first.
    [[nodiscard]] std::vector<char32_t> find(std::string_view text) const;

private:
    [[nodiscard]] std::string_view nameAt(std::size_t place) const;

    std::vector<char32_t> characters_;
    std::string names_;                 ///< a blank before each
    std::vector<std::uint32_t> begins_; ///< of the names, and one more at the end
};

} // namespace manager
