// SPDX-License-Identifier: MIT
// Reading the environment's locale.
#include "system/translation.h"

#include <cstdlib>

namespace sys {

std::string localeCode(std::string_view name) {
    const std::string_view code = name.substr(0, name.find_first_of(".@"));
    if (code.empty() || code == "C" || code == "POSIX") {
        return "en_US";
    }
    return std::string(code);
}

std::string localeOfEnvironment() {
    for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
        if (value != nullptr && *value != '\0') {
            return localeCode(value);
        }
    }
    return localeCode("");
}

} // namespace sys
