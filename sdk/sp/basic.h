// SPDX-License-Identifier: MIT
// The basic suite: the one table that every message brings, through which all others are acquired.
#pragma once

#include "sp/types.h"

#include <cstddef>

/// Owned by the host, like every suite; valid until the plug-in's shut-down message has returned.
struct SPBasicSuite {
    /// [main-thread] Finds a suite by exact name and version and counts one acquisition. `*suite`
    /// is owned by the host and stays valid until the matching ReleaseSuite. kSuiteNotFoundErr:
    /// there is none, and `*suite` is null; kBadParameterErr: an argument is null.
    SPErr (*AcquireSuite)(const char* name, std::int32_t version, const void** suite);
    /// [main-thread] Gives one acquisition back. kSuiteNotFoundErr: there is no such suite, or it
    /// is not acquired.
    SPErr (*ReleaseSuite)(const char* name, std::int32_t version);
    /// [any-thread] Allocates `size` bytes, which the caller owns until FreeBlock.
    /// kOutOfMemoryErr: `*block` is null.
    SPErr (*AllocateBlock)(std::size_t size, void** block);
    /// [any-thread] Frees a block; null is allowed. kBadParameterErr: not a block of AllocateBlock,
    /// or freed before.
    SPErr (*FreeBlock)(void* block);
};
static_assert(isSuiteTable<SPBasicSuite, 4>);
