// SPDX-License-Identifier: MIT
// Waits for the end of what containers are active for.
#pragma once

#include "manager/activation/reason.h"
#include "system/descriptor.h"

#include <cstdint>
#include <ctime>
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

private:
    void watchStaging();

    std::string staging_;
    sys::Descriptor changes_; ///< inotify
    sys::Descriptor ended_;   ///< epoll over the processes
    std::vector<sys::Descriptor> processes_;
    std::time_t earliest_ = 0; ///< 0: none
};

} // namespace manager
