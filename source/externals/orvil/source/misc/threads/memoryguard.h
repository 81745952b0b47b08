// SPDX-License-Identifier: MIT
// A debugging aid: a thread that stops the process when watched memory changes.
#pragma once

#include "misc/threads/mutex.h"
#include "misc/threads/thread.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvil {

/// Faults on purpose by a write to address 0, so that a debugger stops here.
void manualBreakpoint();

/// Compares watched words with what they were when they were registered, over and over, on a thread
/// of its own, which is started and ended like any Thread. [any-thread] but for that.
class MemoryGuard : public Thread {
public:
    MemoryGuard();
    MemoryGuard(const MemoryGuard&) = delete;
    MemoryGuard& operator=(const MemoryGuard&) = delete;
    ~MemoryGuard() noexcept(false) override;

    /// Watches `wordCount` words at `address`, not owned, which must stay readable as long as the
    /// guard lives. Returns true.
    bool addEntry(const std::uint32_t* address, std::size_t wordCount);
    /// Calls manualBreakpoint() for every word that has changed.
    void checkEntries();
    /// Checks without end; ends by destroy() alone.
    int run() override;

private:
    struct Word {
        std::uint32_t value;
        std::uint32_t sentinel; // tells when the snapshot itself has been overwritten
    };
    struct Entry {
        const std::uint32_t* address;
        std::vector<Word> snapshot;
    };

    Mutex lock_{false};
    std::vector<Entry> entries_;
};

} // namespace Orvil
