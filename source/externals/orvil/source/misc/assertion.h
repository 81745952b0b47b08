// SPDX-License-Identifier: MIT
// The assertion convention: places that must never be reached say where they stand and abort.
#pragma once

namespace Orvil {

/// Prints "FILE:LINE: failed assertion `EXPRESSION'" and a newline to standard error and aborts
/// the process. `file` is the source file's path from the source root without extension.
[[noreturn]] void assertionAborts(const char* file, unsigned line, const char* expression);

} // namespace Orvil

/// Checked in every build; `file` is that of Orvil::assertionAborts.
#define ORVIL_ASSERT(expression, file)                                                             \
    ((expression)                                                                                  \
         ? static_cast<void>(0)                                                                    \
         : ::Orvil::assertionAborts((file), static_cast<unsigned>(__LINE__), #expression))
