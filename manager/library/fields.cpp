// SPDX-License-Identifier: MIT
// Escaping and splitting of field lines.
#include "manager/library/fields.h"

namespace manager {

std::string joinFields(std::initializer_list<std::string_view> fields) {
    std::string line;
    bool first = true;
    for (const std::string_view field : fields) {
        if (!first) {
            line += '\t';
        }
        first = false;
        for (const char c : field) {
            switch (c) {
            case '\t':
                line += "\\t";
                break;
            case '\n':
                line += "\\n";
                break;
            case '\\':
                line += "\\\\";
                break;
            default:
                line += c;
            }
        }
    }
    line += '\n';
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
        ++i;
        const char escaped = i < line.size() ? line[i] : '\0';
        if (escaped != 't' && escaped != 'n' && escaped != '\\') {
            return std::nullopt;
        }
        fields.back() += escaped == 't' ? '\t' : escaped == 'n' ? '\n' : '\\';
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
