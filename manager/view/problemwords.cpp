// SPDX-License-Identifier: MIT
#include "manager/view/problemwords.h"

#include "faces/fontfaults.h"
#include "manager/view/texts.h"

#include <optional>

namespace manager {

std::string problemInWords(std::string_view problem) {
    const std::optional<faces::ToldFault> fault = faces::faultIn(problem);
    if (!fault) {
        return std::string(problem);
    }
    const auto value = [&](std::size_t place) { // parts of a file are marked texts, too
        return place < fault->values.size() ? translated(fault->values[place].c_str()) : "";
    };
    return fault->about + ": " + filled(translated(fault->text), {value(0), value(1), value(2)});
}

} // namespace manager
