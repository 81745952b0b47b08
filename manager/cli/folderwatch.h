// SPDX-License-Identifier: MIT
// Hears of changes in the library's folders.
#pragma once

#include "manager/library/places.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace manager {

/// A file system that a process sees.
struct Mount {
    std::string number;
    std::string path;
    std::string type;

    auto operator<=>(const Mount& other) const {
        return std::tie(number, path, type) <=> std::tie(other.number, other.path, other.type);
    }
};
using Mounts = std::set<Mount>;
/// Of text as in /proc/self/mountinfo.
[[nodiscard]] Mounts readMounts(std::string_view text);
/// Whether what differs between the two lies at, in or above one of the folders.
[[nodiscard]] bool isMountChangedNear(const Mounts& before, const Mounts& after,
                                      const std::vector<std::string>& folders);

/// Whether the folder lies on a file system that others change without a word to this machine's
/// inotify: one of a network, of a virtual machine's host, or behind another program.
[[nodiscard]] bool isChangedSilently(const Mounts& mounts, std::string_view folder);

/// [one-thread] Watches folders by inotify, and what is mounted there.
class FolderWatch {
public:
    /// Without inotify nothing is heard.
    explicit FolderWatch(const Places& places);

    /// Readable when something happened; -1 without inotify.
    [[nodiscard]] int descriptor() const { return inotify_.get(); }
    struct Result {
        std::size_t added = 0;  ///< watched from now on: what happened there before was not heard
        std::size_t missed = 0; ///< that cannot be watched (the system allows only so many)
        bool isDeaf = false;    ///< not all changes in the folders and roots will be heard
    };
    /// Begins to watch exactly these folders, the list of recorded folders and where it leads if it
    /// is a link, and the way to each of `roots`: that it goes, and when it is away, that it comes
    /// back. What was watched before is so until the end.
    void begin(std::vector<std::string> folders, std::vector<std::string> roots);
    [[nodiscard]] bool isUnderWay() const { return round_.has_value(); }
    /// Sets a portion of the watches; the result once all are set. To be called after begin().
    std::optional<Result> goOn();
    /// Whether all that the last begin() named is watched and each path leads to what is: a change
    /// of that is heard.
    [[nodiscard]] bool isAsSet() const { return isAsSet_; }
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

    /// Watches on their way to be set.
    struct Round {
        std::vector<std::string> folders;
        std::size_t next = 0; ///< of those
        Interests wanted;
        std::set<std::string> watched; ///< those of `folders`
        Result result;
    };

    Interest* add(const std::string& path, std::uint32_t events);
    void addFolder(const std::string& folder);
    bool addWay(const std::string& root);
    void addList();
    void replaceInterests();
    [[nodiscard]] bool isOfInterest(const Interest& interest, std::uint32_t events,
                                    std::string_view name) const;

    std::string list_; ///< the path of the list of recorded folders
    sys::Descriptor inotify_;
    sys::Descriptor mountInfo_;
    Mounts mounts_;
    bool mountHeard_ = false;
    std::vector<std::string> roots_;
    std::optional<Round> round_;
    bool isAsSet_ = false;
    Interests interests_;
    std::set<std::string> folders_; ///< the paths whose contents are of interest
};

} // namespace manager
