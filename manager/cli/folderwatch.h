// SPDX-License-Identifier: MIT
// Hears of changes in the library's folders.
#pragma once

#include "manager/library/places.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// Watches folders by inotify. Used from one thread.
class FolderWatch {
public:
    /// Without inotify nothing is heard; a scan by hand still works.
    explicit FolderWatch(const Places& places);

    /// Readable when something happened; -1 without inotify.
    [[nodiscard]] int descriptor() const { return inotify_.get(); }
    struct Result {
        std::size_t added = 0;  ///< watched from now on: what happened there before was not heard
        std::size_t missed = 0; ///< that cannot be watched (the system allows only so many)
    };
    /// Watches exactly these folders, the list of recorded folders, and the way to each of `roots`:
    /// that it goes, and when it is away, that it comes back.
    Result watch(const std::vector<std::string>& folders, const std::vector<std::string>& roots);
    /// Takes what was heard; whether a scan is called for. What happens to names that are neither
    /// folders nor fonts calls for none.
    bool drain();

private:
    /// What is of interest in a watched folder.
    struct Interest {
        std::string path;
        bool contents = false;       ///< all fonts and folders in it
        std::set<std::string> names; ///< entries that are waited for
    };
    using Interests = std::map<int, Interest>; ///< by watch

    Interest* add(Interests& interests, const std::string& path, std::uint32_t events) const;
    void addWay(Interests& interests, const std::string& root) const;
    [[nodiscard]] bool isOfInterest(const Interest& interest, std::uint32_t events,
                                    std::string_view name) const;

    std::string own_;
    std::string list_; ///< the name in it of the list of recorded folders
    Descriptor inotify_;
    Interests interests_;
    std::set<std::string> folders_; ///< the paths whose contents are of interest
};

} // namespace manager
