// SPDX-License-Identifier: MIT
// What a fuzz target demands of a result; a failure ends the process so that the input is kept.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Prints the place and aborts unless `holds`.
inline void requireAt(bool holds, const char* what, const char* file, int line) {
    if (!holds) {
        std::fprintf(stderr, "%s:%d: not so: %s\n", file, line, what);
        std::abort();
    }
}

#define REQUIRE(expression) requireAt((expression), #expression, __FILE__, __LINE__)
