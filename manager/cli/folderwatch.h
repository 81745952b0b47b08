// SPDX-License-Identifier: MIT
// Hears of changes in the library's folders.
#pragma once

#include "manager/library/places.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace manager {

/// Watches folders by inotify. Used from one thread.
class FolderWatch {
public:
    /// Without inotify nothing is heard; a scan by hand still works.
    explicit FolderWatch(const Places& places);

    /// Readable when something changed; -1 without inotify.
    [[nodiscard]] int descriptor() const { return inotify_.get(); }
    struct Result {
        std::size_t added = 0;  ///< watched from now on: what happened there before was not heard
        std::size_t missed = 0; ///< that cannot be watched (the system allows only so many)
    };
    /// Watches exactly these folders and the list of recorded folders.
    Result watch(const std::vector<std::string>& folders);
    /// Takes what was heard; whether a scan is called for.
    bool drain();

private:
    std::string own_;
    Descriptor inotify_;
    std::map<std::string, int> watches_;
    int ownWatch_ = -1;
};

} // namespace manager
