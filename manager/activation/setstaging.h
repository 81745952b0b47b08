// SPDX-License-Identifier: MIT
// The hidden folder beside the sets, where they are prepared and where what is under way is noted:
// on one file system with them, so that a rename does each step, and passed over by fontconfig.
#pragma once

#include "manager/activation/setrecord.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace manager {

/// Used under the lock of the sets. What lies here is left-over after a crash, but for the records
/// of sets whose removal was begun.
class SetStaging {
public:
    explicit SetStaging(const std::string& root) : path_(root + "/.staging") {}

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string folder(ContainerId id) const { return path_ + "/" + toText(id); }
    /// Makes the set's own folder here, empty. Throws Error.
    void makeFolder(ContainerId id) const;

    /// Replaces the record in the set's folder `place` atomically: written here, so that a crash
    /// leaves nothing in a folder that the desktop sees. Throws Error.
    void replaceRecord(const std::string& place, const SetRecord& record) const;

    /// Where the record of a set is kept while the set is taken away.
    [[nodiscard]] std::string takenRecord(ContainerId id) const { return folder(id) + takenEnding; }
    /// The sets whose removal was begun and not finished.
    [[nodiscard]] std::vector<ContainerId> takenRecords() const;

    /// A new name for the folder of a set that was taken away, and is yet to be deleted.
    [[nodiscard]] std::string asideFolder(ContainerId id) const;
    [[nodiscard]] std::vector<std::string> asideFolders() const;

    /// Notes that this process has a change to settle, for whoever recovers after its end. Without
    /// it, on a full disk, only that is lost.
    void markUnsettled() const noexcept;
    /// The note of `process`, which may have ended.
    void unmarkUnsettled(pid_t process) const noexcept;

    /// Removes what is left over, but for folders aside. Whether a process had a change to settle.
    /// Throws Error.
    bool clear() const;

private:
    static constexpr const char* takenEnding = ".leaving";
    static constexpr const char* asideEnding = ".gone";

    std::string path_;
};

} // namespace manager
