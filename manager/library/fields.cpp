// SPDX-License-Identifier: MIT
// Escaping and splitting of field lines.
#include "manager/library/fields.h"

namespace manager {

namespace {

constexpr std::string_view special = "\t\n\\";
constexpr std::string_view letters = "tn\\"; ///< that stand for them after a backslash

} // namespace

std::string joinFields(std::span<const std::string_view> fields) {
    std::string line;
    for (const std::string_view field : fields) {
        for (const char c : field) {
            const std::size_t place = special.find(c);
            if (place == std::string_view::npos) {
                line += c;
            } else {
                line += {'\\', letters[place]};
            }
        }
        line += '\t';
    }
    line.back() = '\n';
    return line;
}

std::optional<std::vector<std::string>> splitFields(std::string_view line) {
    std::vector<std::string> fields(1);
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\t') {
            fields.emplace_back();
            continue;
        }
        if (line[i] != '\\') {
            fields.back() += line[i];
            continue;
        }
        const std::size_t place = ++i < line.size() ? letters.find(line[i]) : std::string::npos;
        if (place == std::string::npos) {
            return std::nullopt;
        }
        fields.back() += special[place];
    }
    return fields;
}

std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

} // namespace manager
