// SPDX-License-Identifier: MIT
// The critical section of the thread manager, whose threads take turns by agreement.
#pragma once

#include "platform/types.h"

enum : OSErr {
    threadProtocolErr = -619,
};

/// [main-thread] No other thread of the thread manager gets its turn until the section is ended.
/// Sections nest. Here the main thread is the only one that the thread manager knows, so nobody has
/// to wait: sections are only counted. Returns noErr.
OSErr ThreadBeginCritical();
/// [main-thread] Ends the innermost section. threadProtocolErr: there is none.
OSErr ThreadEndCritical();
