// SPDX-License-Identifier: MIT
// The count of the main thread's critical sections.
#include "platform/threads.h"

#include <cstdint>

namespace {

std::uint32_t openSections = 0;

} // namespace

OSErr ThreadBeginCritical() {
    ++openSections;
    return noErr;
}

OSErr ThreadEndCritical() {
    if (openSections == 0) {
        return threadProtocolErr;
    }
    --openSections;
    return noErr;
}
