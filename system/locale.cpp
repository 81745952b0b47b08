// SPDX-License-Identifier: MIT
// Reading the environment's locale.
#include "system/translation.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <system_error>

namespace sys {

namespace {

namespace fs = std::filesystem;

std::string_view variable(const char* name) {
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr ? value : "";
}

std::string_view localeName() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const std::string_view value = variable(name); !value.empty()) {
            return value;
        }
    }
    return "";
}

std::string_view languageIn(std::string_view code) {
    return code.substr(0, code.find('_'));
}

/// The catalogue of exactly this name, else the first by name of the language.
std::optional<std::string> catalogueFor(const std::string& code, const fs::path& folder,
                                        const std::string& domain) {
    std::optional<std::string> best;
    std::error_code failed;
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const std::string name = entry->path().filename().string();
        std::error_code ignored;
        if (languageIn(name) != languageIn(code) ||
            !fs::exists(entry->path() / "LC_MESSAGES" / (domain + ".mo"), ignored)) {
            continue;
        }
        if (name == code) {
            return name;
        }
        best = best ? std::min(*best, name) : name;
    }
    return best;
}

} // namespace

fs::path catalogueFolder(const char* catalogues) {
    std::error_code failed;
    const fs::path program = fs::read_symlink("/proc/self/exe", failed);
    return program.parent_path().parent_path() / catalogues;
}

std::string localeCode(std::string_view name) {
    const std::string_view code = name.substr(0, name.find_first_of(".@"));
    if (code.empty() || code == "C" || code == "POSIX") {
        return "en_US";
    }
    return std::string(code);
}

std::string languageOfEnvironment(const char* domain, const char* catalogues) {
    const std::string_view locale = localeName();
    if (locale.empty() || locale == "C" || locale == "POSIX") {
        return localeCode("");
    }
    const fs::path folder = catalogueFolder(catalogues);
    std::string_view languages = variable("LANGUAGE");
    if (languages.empty()) {
        const std::string code = localeCode(locale);
        return catalogueFor(code, folder, domain).value_or(code);
    }
    while (!languages.empty()) {
        const std::size_t length = std::min(languages.find(':'), languages.size());
        const std::string_view name = languages.substr(0, length);
        languages.remove_prefix(std::min(length + 1, languages.size()));
        if (name.empty()) {
            continue;
        }
        std::string code = localeCode(name); // English for "C", at which gettext stops, too
        if (languageIn(code) == "en") {
            return code;
        }
        if (const auto found = catalogueFor(code, folder, domain)) {
            return *found;
        }
    }
    return localeCode("");
}

} // namespace sys
