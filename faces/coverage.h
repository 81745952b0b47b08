// SPDX-License-Identifier: MIT
// What the characters of a font are good for: scripts and languages.
#pragma once

#include "faces/face.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace faces {

/// Adds a character, which is beyond all that the coverage has.
void addCharacter(Coverage& coverage, char32_t character);

[[nodiscard]] bool covers(const Coverage& coverage, char32_t character);

struct Languages {
    std::vector<std::string> scripts;   ///< as in Face
    std::vector<std::string> languages; ///< as in Face
};

/// [one-thread] Tells the languages and scripts of coverages. Fonts often have the same, so it
/// keeps the answers to the last ones.
class LanguageFinder {
public:
    LanguageFinder();

    /// A language is covered when all characters are there that fontconfig has for it, a script
    /// when a language is that is written in it, or many of its characters. Valid until the next
    /// call.
    [[nodiscard]] const Languages& find(const Coverage& coverage);

private:
    /// 256 characters, a bit each.
    using Page = std::array<std::uint32_t, 8>;
    struct Language {
        std::string name;
        std::string script;
        std::vector<std::pair<std::uint32_t, Page>> pages; ///< by their numbers
    };
    struct Script {
        std::string name;
        std::size_t enough = 0; ///< characters that make it a covered one
    };
    struct ScriptRange {
        char32_t first = 0;
        char32_t last = 0;
        std::size_t script = 0; ///< place in scripts_
    };

    void readLanguages();
    void readScripts();
    [[nodiscard]] Languages ask(const Coverage& coverage) const;
    [[nodiscard]] std::vector<std::string> scriptsByCount(const Coverage& coverage) const;

    std::vector<Language> languages_;
    std::vector<Script> scripts_;
    std::vector<ScriptRange> ranges_; ///< in order
    std::unordered_map<std::string, Languages> known_;
};

} // namespace faces
