// SPDX-License-Identifier: MIT
// Reads family lists.
#include "host/documents/css/families.h"

#include "host/documents/css/css.h"
#include "host/documents/face.h"

#include <utility>

namespace host::css {

std::vector<FamilyName> readFamilies(std::string_view list) {
    std::vector<FamilyName> result;
    for (std::size_t position = 0; position < list.size();) {
        const std::size_t comma = findOutside(list, position, ",");
        const std::string_view part = trim(list.substr(position, comma - position));
        position = comma + 1;
        if (part.empty()) {
            continue;
        }
        FamilyName family;
        family.start = static_cast<std::size_t>(part.data() - list.data());
        family.end = family.start + part.size();
        const char quote = part.front();
        if (quote == '"' || quote == '\'') {
            const bool closed = part.size() > 1 && part.back() == quote;
            family.name = unescape(part.substr(1, part.size() - (closed ? 2 : 1)));
        } else {
            // Words of an unquoted name are joined by one blank.
            const std::string name = unescape(part);
            for (const char c : name) {
                if (!isBlank(c)) {
                    family.name += c;
                } else if (!family.name.empty() && family.name.back() != ' ') {
                    family.name += ' ';
                }
            }
        }
        family.name = std::string(trim(family.name));
        if (!family.name.empty()) {
            // Quoted generic names are written by programs that mean the generic family.
            family.generic = isGenericFamily(family.name);
            result.push_back(std::move(family));
        }
    }
    return result;
}

} // namespace host::css
