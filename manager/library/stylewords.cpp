// SPDX-License-Identifier: MIT
// The words of style names.
#include "manager/library/stylewords.h"

#include <algorithm>
#include <array>
#include <set>

namespace manager {

namespace {

struct Word {
    std::string_view word;
    std::string_view form; ///< empty: says nothing
};

/// A word stands before those that it begins with.
constexpr std::array words{
    Word{"regular", ""},
    Word{"book", ""},
    Word{"roman", ""},
    Word{"normal", ""},
    Word{"upright", ""},
    Word{"plain", ""},
    Word{"-", ""},
    Word{"italic", "italic"},
    Word{"oblique", "italic"},
    Word{"slanted", "italic"},
    Word{"inclined", "italic"},
    Word{"hairline", "thin"},
    Word{"thin", "thin"},
    Word{"extralight", "extralight"},
    Word{"ultralight", "extralight"},
    Word{"semilight", "semilight"},
    Word{"demilight", "semilight"},
    Word{"light", "light"},
    Word{"medium", "medium"},
    Word{"semibold", "semibold"},
    Word{"demibold", "semibold"},
    Word{"extrabold", "extrabold"},
    Word{"ultrabold", "extrabold"},
    Word{"bold", "bold"},
    Word{"extrablack", "extrablack"},
    Word{"ultrablack", "extrablack"},
    Word{"black", "black"},
    Word{"heavy", "black"},
    Word{"ultracondensed", "ultracondensed"},
    Word{"extracondensed", "extracondensed"},
    Word{"semicondensed", "semicondensed"},
    Word{"condensed", "condensed"},
    Word{"narrow", "condensed"},
    Word{"ultraexpanded", "ultraexpanded"},
    Word{"extraexpanded", "extraexpanded"},
    Word{"semiexpanded", "semiexpanded"},
    Word{"expanded", "expanded"},
    Word{"extended", "expanded"},
    Word{"demi", "semibold"},
};

const Word* wordAt(std::string_view text) {
    const auto* const found = std::find_if(words.begin(), words.end(), [text](const Word& word) {
        return text.starts_with(word.word);
    });
    return found == words.end() ? nullptr : found;
}

} // namespace

std::string styleForm(std::string_view styleKey) {
    std::set<std::string_view> forms;
    std::size_t unknown = 0; // where a stretch of unknown characters began
    const auto closeUnknown = [&](std::size_t end) {
        if (end > unknown) {
            forms.insert(styleKey.substr(unknown, end - unknown));
        }
    };
    for (std::size_t position = 0; position < styleKey.size();) {
        const Word* const word = wordAt(styleKey.substr(position));
        if (word == nullptr) {
            ++position;
            continue;
        }
        closeUnknown(position);
        if (!word->form.empty()) {
            forms.insert(word->form);
        }
        position += word->word.size();
        unknown = position;
    }
    closeUnknown(styleKey.size());
    std::string result;
    for (const std::string_view form : forms) {
        result.append("=").append(form);
    }
    return result.empty() ? "=" : result;
}

} // namespace manager
