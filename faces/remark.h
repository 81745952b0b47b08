// SPDX-License-Identifier: MIT
// What is said to people of how one face stands to another, in the language of whoever shows it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace faces {

/// Only marks a text for translation, which comes later.
constexpr const char* marked(const char* text) {
    return text;
}

/// "%1" and "%2" in `text` stand for names that are the same in every language.
struct Remark {
    const char* text; ///< English, of the program's life
    std::string first = {};
    std::string second = {};
    bool isExplained = false; ///< by the remarks that follow it
};
using Remarks = std::vector<Remark>;

/// The remarks in a line: "same family, Bold instead of SemiBold"; empty when there are none.
/// Without `translated`, which gives a text of a Remark in a person's language, it is English.
[[nodiscard]] std::string lineOf(std::span<const Remark> remarks,
                                 std::string (*translated)(const char*) = nullptr);

} // namespace faces
