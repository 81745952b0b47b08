// SPDX-License-Identifier: MIT
// Reading and replacing the list of library folders.
#include "manager/library/folders.h"

#include "manager/library/error.h"
#include "manager/library/fields.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace manager {

namespace {

constexpr std::string_view header = "glyphora-folders 1";
constexpr std::size_t maximumLength = std::size_t{16} << 20U;

void writeFolders(const Places& places, const std::vector<std::string>& folders) {
    std::string text(header);
    text += '\n';
    for (const std::string& folder : folders) {
        text += joinFields({folder});
    }
    replaceFile(places.folders(), text);
}

std::string canonical(const std::string& folder) {
    std::error_code code;
    std::filesystem::path path = std::filesystem::canonical(folder, code);
    if (code) {
        throw systemError(folder, "cannot be added", code.value());
    }
    if (!std::filesystem::is_directory(path, code)) {
        throw Error(folder + ": cannot be added: not a folder");
    }
    return path.string();
}

// Two commands may run at a time; the list is read and replaced under this lock.
FileLock lockFolders(const Places& places) {
    makeFolders(places.own());
    return FileLock(places.folders() + ".lock");
}

} // namespace

namespace {

std::vector<std::string> readRecorded(const Places& places) {
    std::error_code code;
    if (std::filesystem::symlink_status(places.folders(), code).type() ==
        std::filesystem::file_type::not_found) {
        return {};
    }
    const std::string text = readFile(places.folders(), maximumLength);
    const auto lines = splitLines(text);
    if (lines.empty() || lines.front() != header) {
        throw Error(places.folders() + ": line 1: expected \"" + std::string(header) + "\"");
    }
    std::vector<std::string> folders;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        auto fields = splitFields(lines[i]);
        if (!fields || fields->size() != 1 || !fields->front().starts_with('/')) {
            throw Error(places.folders() + ": line " + std::to_string(i + 1) +
                        ": not an absolute folder");
        }
        folders.push_back(std::move(fields->front()));
    }
    return folders;
}

} // namespace

std::vector<std::string> readFolders(const Places& places) {
    std::vector<std::string> folders = readRecorded(places);
    if (std::string session = sessionFolder(places); !session.empty()) {
        folders.push_back(std::move(session));
    }
    return folders;
}

std::string sessionFolder(const Places& places) {
    std::error_code code;
    const auto folder = std::filesystem::canonical(places.sessionFonts(), code);
    return code ? std::string() : folder.string();
}

std::string makeSessionFolder(const Places& places) {
    const FileLock lock = lockFolders(places);
    if (std::string known = sessionFolder(places); !known.empty()) {
        return known;
    }
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime != '/') {
        throw Error("XDG_RUNTIME_DIR names no folder that goes when the session ends");
    }
    std::string folder = joinPath(runtime, "glyphora-fonts-XXXXXX");
    if (mkdtemp(folder.data()) == nullptr) {
        throw systemError(folder, "cannot be made", errno);
    }
    std::error_code code;
    std::filesystem::remove(places.sessionFonts(), code); // one of a session that has ended
    std::filesystem::create_directory_symlink(folder, places.sessionFonts(), code);
    if (code) {
        throw systemError(places.sessionFonts(), "cannot be made", code.value());
    }
    return sessionFolder(places);
}

std::vector<std::string> addFolders(const Places& places, std::span<const std::string> folders) {
    std::vector<std::string> paths;
    std::transform(folders.begin(), folders.end(), std::back_inserter(paths), canonical);
    std::error_code code;
    const std::string active = std::filesystem::weakly_canonical(places.fonts(), code).string();
    for (const std::string& path : paths) {
        if (!code && liesUnder(path, active)) {
            throw Error(path + ": cannot be added: it holds the active fonts");
        }
    }

    const FileLock lock = lockFolders(places);
    std::vector<std::string> recorded = readRecorded(places);
    std::vector<std::string> added;
    for (std::string& path : paths) {
        const bool known = std::any_of(recorded.begin(), recorded.end(),
                                       [&](const auto& folder) { return liesUnder(path, folder); });
        if (!known) {
            recorded.push_back(path);
            added.push_back(std::move(path));
        }
    }
    if (!added.empty()) {
        writeFolders(places, recorded);
    }
    return added;
}

std::vector<std::string> removeFolders(const Places& places, std::span<const std::string> folders) {
    const FileLock lock = lockFolders(places);
    std::vector<std::string> recorded = readRecorded(places);
    std::vector<std::string> removed;
    for (const std::string& folder : folders) {
        std::error_code code;
        std::string path =
            std::filesystem::weakly_canonical(std::filesystem::absolute(folder), code).string();
        auto position = std::find(recorded.begin(), recorded.end(), code ? folder : path);
        if (position == recorded.end()) {
            position = std::find(recorded.begin(), recorded.end(), folder);
        }
        if (position == recorded.end()) {
            throw Error(folder + ": not a folder of the library");
        }
        removed.push_back(std::move(*position));
        recorded.erase(position);
    }
    if (!removed.empty()) {
        writeFolders(places, recorded);
    }
    return removed;
}

} // namespace manager
