// SPDX-License-Identifier: MIT
// Waits for the end of what containers are active for.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/library.h"
#include "system/descriptor.h"

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace manager {

/// [main-thread] What cannot be watched is found out at the next look at the reasons.
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
    bool takeChange();
    /// The sets that have changed since the last call; nullopt: any may have.
    std::optional<std::vector<ContainerId>> takeChangedSets();

private:
    void watchStaging();

    std::string staging_;
    int watch_ = -1;
    bool anyChanged_ = false;
    std::vector<ContainerId> changed_;
    sys::Descriptor changes_; ///< inotify
    sys::Descriptor ended_;   ///< epoll over the processes
    std::vector<sys::Descriptor> processes_;
    std::time_t earliest_ = 0; ///< 0: none
};

} // namespace manager
