// SPDX-License-Identifier: MIT
// Waits for the end of what containers are active for.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/library.h"
#include "system/descriptor.h"

#include <cstdint>
#include <ctime>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace manager {

/// [main-thread] What others change is heard through the folder in which every set is prepared.
/// Where that cannot be watched, one has to look now and then.
class ReasonWatch {
public:
    /// `sets` is the folder of all sets, be it there yet or not.
    explicit ReasonWatch(const std::string& sets);

    /// Readable when a process has ended that is a reason.
    [[nodiscard]] int descriptor() const { return ended_.get(); }
    /// Readable when sets have changed, and reasons may be new.
    [[nodiscard]] int changeDescriptor() const { return changes_.get(); }
    /// Shortens a wait in milliseconds (-1: for ever) to the earliest time that is a reason.
    [[nodiscard]] int shorten(int wait) const;

    /// Waits for the end of these from now on.
    void watch(const std::vector<Reason>& reasons);
    /// Whether one has ended; told once.
    bool takeEnd();
    /// Whether something has changed since the last call.
    bool takeChange();
    /// Sets that this process has changed.
    void noteChanges(const std::vector<ContainerId>& sets);
    /// The sets that have changed since the last call; nullopt: any may have.
    std::optional<std::vector<ContainerId>> takeChangedSets();
    /// Whether changes that others make are not all heard of.
    [[nodiscard]] bool isDeaf() const { return isDeaf_; }
    /// Tries to hear them again; any set may have changed meanwhile.
    void lookAgain();

private:
    void watchStaging();

    std::string staging_;
    std::set<int> watches_; ///< on it and on the folders above it
    bool isDeaf_ = true;
    bool changedHere_ = false;
    bool anyChanged_ = false;
    std::vector<ContainerId> changed_;
    sys::Descriptor changes_; ///< inotify
    sys::Descriptor ended_;   ///< epoll over the processes
    std::vector<sys::Descriptor> processes_;
    std::time_t earliest_ = 0; ///< 0: none
};

} // namespace manager
