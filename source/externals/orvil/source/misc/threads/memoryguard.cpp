// SPDX-License-Identifier: MIT
// Snapshots of watched memory and their comparison.
#include "misc/threads/memoryguard.h"

#include <utility>

namespace Orvil {

namespace {

constexpr std::uint32_t sentinelValue = 0x12345678;

/// Others write to watched memory at any time; seeing that is the purpose, so the read is atomic
/// and the thread sanitizer does not look at it.
[[gnu::no_sanitize_thread]] std::uint32_t watchedWord(const std::uint32_t* address) {
    return __atomic_load_n(address, __ATOMIC_RELAXED);
}

} // namespace

__attribute__((no_sanitize("undefined"))) void manualBreakpoint() {
    // Through a variable, so that the compiler does not know better.
    const volatile std::uintptr_t address = 0;
    *reinterpret_cast<volatile char*>(address) = 0; // NOLINT: the fault is the purpose
}

MemoryGuard::MemoryGuard() = default;

MemoryGuard::~MemoryGuard() noexcept(false) {
    destroy();
}

bool MemoryGuard::addEntry(const std::uint32_t* address, std::size_t wordCount) {
    const ScopedLock<Mutex> locked(lock_);
    Entry entry{address, {}};
    entry.snapshot.reserve(wordCount);
    for (std::size_t i = 0; i < wordCount; ++i) {
        entry.snapshot.push_back({watchedWord(address + i), sentinelValue});
    }
    entries_.push_back(std::move(entry));
    return true;
}

void MemoryGuard::checkEntries() {
    const ScopedLock<Mutex> locked(lock_);
    for (const Entry& entry : entries_) {
        const std::uint32_t* address = entry.address;
        for (const Word& word : entry.snapshot) {
            if (watchedWord(address++) != word.value || word.sentinel != sentinelValue) {
                manualBreakpoint();
            }
        }
    }
}

int MemoryGuard::run() {
    for (;;) {
        checkEntries();
        yield();
        pthread_testcancel(); // yielding is no cancellation point here
    }
}

} // namespace Orvil
