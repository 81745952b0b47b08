// SPDX-License-Identifier: MIT
// Memory maps as /proc tells them: a line per mapping, which ends with the file's path.
#include "manager/activation/mappedfiles.h"

#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "manager/library/places.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <unistd.h>

namespace manager {

namespace {

/// Reads fonts for others and is gone in a moment.
bool isReader(const std::filesystem::path& process) {
    std::error_code code;
    const auto program = std::filesystem::read_symlink(process / "exe", code).filename();
    return program == "glyphora-desktop" || program == "fc-cache";
}

} // namespace

Mappers mappersOfFilesBelow(const std::string& root) {
    constexpr std::size_t maximumLength = std::size_t{64} << 20U;
    Mappers mappers;
    std::error_code code;
    const std::string resolved = std::filesystem::canonical(root, code).string(); // as maps have it
    if (code) {
        return mappers;
    }
    const std::string beginning = " " + resolved + "/";
    for (std::filesystem::directory_iterator entry("/proc", code), end; !code && entry != end;
         entry.increment(code)) {
        const auto id = toNumber<std::int32_t>(entry->path().filename().string());
        if (!id || *id == getpid() || isReader(entry->path())) {
            continue;
        }
        std::string maps;
        try {
            maps = readFile(entry->path() / "maps", maximumLength);
        } catch (const Error&) {
            continue; // another user's, or ended
        }
        const auto mark = markOf(*id);
        for (std::size_t at = maps.find(beginning); mark && at != std::string::npos;
             at = maps.find(beginning, at + 1)) {
            const std::string_view line(maps.data() + at + 1, maps.find('\n', at) - at - 1);
            auto& known = mappers[root + folderOf(line).substr(resolved.size())];
            if (std::find(known.begin(), known.end(), *mark) == known.end()) {
                known.push_back(*mark);
            }
        }
    }
    return mappers;
}

std::vector<Reason> usesIn(const std::string& folder, const Mappers& mappers) {
    std::vector<Reason> uses;
    if (const auto users = mappers.find(folder); users != mappers.end()) {
        std::transform(users->second.begin(), users->second.end(), std::back_inserter(uses),
                       Reason::inUseBy);
    }
    return uses;
}

std::string inUseText(ContainerId id, const std::vector<Reason>& uses, std::string_view what) {
    std::string text = "container " + toText(id) + ": ";
    for (const Reason& use : uses) {
        text += (&use == &uses.front() ? "" : ", ") + describe(use);
    }
    text.append("; ").append(what);
    return text + (uses.size() == 1 ? " when that ends" : " when those end");
}

} // namespace manager
