// SPDX-License-Identifier: MIT
// The end of a process whose own rules are broken.
#include "misc/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace Orvil {

void assertionAborts(const char* file, unsigned line, const char* expression) {
    std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", file, line, expression);
    std::abort();
}

} // namespace Orvil
