// SPDX-License-Identifier: MIT
#include "manager/cli/licencefiles.h"

#include "manager/cli/archivenames.h"
#include "manager/library/error.h"
#include "manager/library/places.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <utility>

namespace manager {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostOfOneDesign = 20;
// Never of names that a home folder has, such as "fonts".
constexpr std::array formatFolders = {"otf",   "otc",      "ttf",      "ttc",     "static",
                                      "type1", "variable", "truetype", "opentype"};

bool isNamedForAFormat(const std::string& folder) {
    std::string name = nameOf(folder);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::find(formatFolders.begin(), formatFolders.end(), name) != formatFolders.end();
}

std::vector<std::string> licencesIn(const std::string& folder) {
    std::vector<std::string> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        std::error_code gone;
        if (!name.starts_with('.') && hasLicenceFileName(name) && entry.is_regular_file(gone)) {
            paths.push_back(joinPath(folder, name));
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace

LicenceFiles::Found LicenceFiles::of(const std::string& folder) {
    const auto [entry, isNew] = known_.try_emplace(folder);
    if (!isNew) {
        return {entry->second};
    }
    std::string looked = folder;
    try {
        std::vector<std::string> paths = licencesIn(looked);
        if (const std::string above = folderOf(folder);
            paths.empty() && isNamedForAFormat(folder) && folders_.contains(above)) {
            looked = above;
            paths = licencesIn(looked);
        }
        if (paths.size() > mostOfOneDesign) {
            return {{},
                    looked + ": " +
                        filled(translated("none of its %1 files on licences is copied, as which "
                                          "font each is of cannot be told"),
                               {std::to_string(paths.size())})};
        }
        entry->second = std::move(paths);
    } catch (const fs::filesystem_error& error) {
        return {{}, systemError(looked, "cannot be read", error.code().value()).what()};
    }
    return {entry->second};
}

} // namespace manager
