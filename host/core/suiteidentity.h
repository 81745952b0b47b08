// SPDX-License-Identifier: MIT
// The name and version under which each suite's table is acquired, by the table's type.
#pragma once

#include "suitelist.h"
#include "suitepointers.h"

#include <cstdint>

namespace host {

struct SuiteId {
    const char* name;
    std::int32_t version;
};

template <typename Suite>
struct SuiteIdentity;

#define GLYPHORA_IDENTIFY_SUITE(type, pointer, suiteName, suiteVersion)                            \
    template <>                                                                                    \
    struct SuiteIdentity<type> {                                                                   \
        static constexpr SuiteId id{suiteName, suiteVersion};                                      \
    };
GLYPHORA_BASIC_SUITES(GLYPHORA_IDENTIFY_SUITE)
GLYPHORA_IMPORT_SUITES(GLYPHORA_IDENTIFY_SUITE)
#undef GLYPHORA_IDENTIFY_SUITE

/// The basic suite is not acquired; the name serves messages only.
template <>
struct SuiteIdentity<SPBasicSuite> {
    static constexpr SuiteId id{"SP Basic Suite", 0};
};

} // namespace host
