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
#include <utility>
#include <vector>

namespace manager {

/// The file systems that a process sees: mount number and path, of text as in /proc/self/mountinfo.
using Mounts = std::set<std::pair<std::string, std::string>>;
[[nodiscard]] Mounts readMounts(std::string_view text);
/// Whether what differs between the two lies at, in or above one of the folders.
[[nodiscard]] bool isMountChangedNear(const Mounts& before, const Mounts& after,
                                      const std::vector<std::string>& folders);

/// [one-thread] Watches folders by inotify, and what is mounted there.
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
    /// Watches exactly these folders, the list of recorded folders and where it leads if it is a
    /// link, and the way to each of `roots`: that it goes, and when it is away, that it comes back.
    Result watch(const std::vector<std::string>& folders, const std::vector<std::string>& roots);
    /// Polls with POLLPRI, once for each time that file systems were mounted or unmounted: inotify
    /// says nothing of it. checkMounts is to be called then. -1 where that cannot be had.
    [[nodiscard]] int mountDescriptor() const { return mountInfo_.get(); }
    /// Looks at the list alone: a file system may be slow to answer.
    void checkMounts();
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

    std::string list_; ///< the path of the list of recorded folders
    sys::Descriptor inotify_;
    sys::Descriptor mountInfo_;
    Mounts mounts_;
    bool mountHeard_ = false;
    std::vector<std::string> roots_;
    Interests interests_;
    std::set<std::string> folders_; ///< the paths whose contents are of interest
};

} // namespace manager
