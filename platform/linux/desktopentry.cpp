// SPDX-License-Identifier: MIT
// Reading desktop entries by the rules that desktops share for entries and base directories.
#include "desktopentry.h"

#include <cstdlib>
#include <filesystem>

namespace platform {

namespace {

std::string environment(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr ? value : "";
}

/// In order of precedence. Relative ones are ignored, as the rules want it.
std::vector<std::filesystem::path> dataFolders() {
    std::string home = environment("XDG_DATA_HOME");
    if (home.empty()) {
        home = std::string(g_get_home_dir()) + "/.local/share";
    }
    std::string others = environment("XDG_DATA_DIRS");
    if (others.empty()) {
        others = "/usr/local/share:/usr/share";
    }
    std::vector<std::filesystem::path> folders{std::move(home)};
    for (std::size_t begin = 0; begin <= others.size();) {
        const std::size_t end = std::min(others.find(':', begin), others.size());
        folders.emplace_back(others.substr(begin, end - begin));
        begin = end + 1;
    }
    std::erase_if(folders, [](const auto& folder) { return !folder.is_absolute(); });
    return folders;
}

/// Replaces the field codes within one word; adds nothing for a word that named files only.
void addWord(GDesktopAppInfo& entry, std::string_view word, std::vector<std::string>& words) {
    if (word == "%f" || word == "%F" || word == "%u" || word == "%U") {
        return;
    }
    if (word == "%i") {
        const TextHandle icon(g_desktop_app_info_get_string(&entry, "Icon"));
        if (icon && *icon != '\0') {
            words.insert(words.end(), {"--icon", icon.get()});
        }
        return;
    }
    std::string replaced;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] != '%' || i + 1 == word.size()) {
            replaced += word[i];
            continue;
        }
        switch (word[++i]) {
        case '%':
            replaced += '%';
            break;
        case 'c':
            replaced += g_app_info_get_name(G_APP_INFO(&entry));
            break;
        case 'k':
            replaced += g_desktop_app_info_get_filename(&entry);
            break;
        default: // files that are not there, and codes that mean nothing any more
            break;
        }
    }
    words.push_back(std::move(replaced));
}

} // namespace

ObjectHandle<GDesktopAppInfo> loadDesktopEntry(const std::string& path) {
    ObjectHandle<GDesktopAppInfo> entry(g_desktop_app_info_new_from_filename(path.c_str()));
    if (!entry || g_desktop_app_info_get_is_hidden(entry.get()) != 0 || commandOf(*entry).empty()) {
        return nullptr;
    }
    return entry;
}

std::string findDesktopEntry(std::string_view identifier) {
    if (identifier.empty() || identifier.find('/') != std::string_view::npos) {
        return {};
    }
    const std::string name = std::string(identifier) + ".desktop";
    for (const std::filesystem::path& folder : dataFolders()) {
        const std::filesystem::path path = folder / "applications" / name;
        std::error_code ignored;
        if (std::filesystem::exists(path, ignored)) {
            return loadDesktopEntry(path) ? path.string() : std::string();
        }
    }
    return {};
}

std::vector<std::string> commandOf(GDesktopAppInfo& entry) {
    const char* line = g_app_info_get_commandline(G_APP_INFO(&entry));
    char** parsed = nullptr;
    if (line == nullptr || g_shell_parse_argv(line, nullptr, &parsed, nullptr) == 0) {
        return {};
    }
    const TextListHandle owned(parsed);
    std::vector<std::string> words;
    for (char** word = parsed; *word != nullptr; ++word) {
        addWord(entry, *word, words);
    }
    return words;
}

} // namespace platform
