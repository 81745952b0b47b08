// SPDX-License-Identifier: MIT
// Which files beside fonts tell of their licence.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace manager {

/// [one-thread] Looks at each folder once.
class LicenceFiles {
public:
    /// `folders`: those of the library, above which nothing is looked for.
    explicit LicenceFiles(std::set<std::string> folders) : folders_(std::move(folders)) {}

    struct Found {
        std::vector<std::string> paths; ///< by name; hidden files are left out
        /// Why there are none although there may be: for people, naming the folder. Told once.
        std::string problem = {};
    };
    /// Of the fonts in `folder`, an absolute path: what has a licence's name there (see
    /// hasLicenceFileName), else in the folder above, where this one is named for a format
    /// ("static", "otf"). A pile of fonts, with more than 20 of them, has none: nobody could tell
    /// which is whose.
    [[nodiscard]] Found of(const std::string& folder);

private:
    std::set<std::string> folders_;
    std::map<std::string, std::vector<std::string>> known_; ///< by folder
};

} // namespace manager
