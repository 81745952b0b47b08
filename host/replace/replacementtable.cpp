// SPDX-License-Identifier: MIT
// Reading and matching tables.
#include "host/replace/replacementtable.h"

#include "faces/namekey.h"

#include <fnmatch.h>

#include <algorithm>
#include <array>
#include <istream>

namespace host {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// In names "[" and "\" are letters like others; only "*" and "?" are wild.
std::string patternOf(std::string_view old) {
    std::string pattern;
    for (const char c : faces::nameKey(old)) {
        if (c == '[' || c == '\\') {
            pattern += '\\';
        }
        pattern += c;
    }
    return pattern;
}

} // namespace

void ReplacementTable::add(std::string_view line, std::string place) {
    const std::size_t equals = line.find('=');
    const std::string_view old = trimmed(line.substr(0, std::min(equals, line.size())));
    const std::string_view name =
        equals == std::string_view::npos ? std::string_view() : trimmed(line.substr(equals + 1));
    if (old.empty() || name.empty()) {
        throw TableError(place + ": not of the form \"old = new\"");
    }
    rules_.push_back({{std::move(place), std::string(old), std::string(name)}, patternOf(old)});
}

void ReplacementTable::read(std::istream& table, const std::string& name) {
    std::size_t number = 0;
    for (std::string line; std::getline(table, line);) {
        ++number;
        const std::string_view rule = trimmed(line);
        if (!rule.empty() && rule.front() != '#') {
            add(rule, name + ":" + std::to_string(number));
        }
    }
    if (table.bad()) {
        throw TableError(name + ": cannot be read");
    }
}

const ReplacementTable::Rule* ReplacementTable::ruleFor(const Face& face) const {
    const std::array<std::string, 3> keys{
        faces::nameKey(face.family), faces::nameKey(face.family + " " + face.style),
        faces::nameKey(face.postScriptName.empty()
                           ? conventionalPostScriptName(face.family, face.style)
                           : face.postScriptName)};
    const auto entry = std::find_if(rules_.begin(), rules_.end(), [&](const Entry& one) {
        return std::any_of(keys.begin(), keys.end(), [&](const std::string& key) {
            return ::fnmatch(one.pattern.c_str(), key.c_str(), 0) == 0;
        });
    });
    return entry == rules_.end() ? nullptr : &entry->rule;
}

} // namespace host
