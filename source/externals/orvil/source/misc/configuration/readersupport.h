// SPDX-License-Identifier: MIT
// What the readers of configurations share: names that end in an index.
#pragma once

#include <string>
#include <string_view>

namespace Orvil::ConfigurationReading {

/// A name without the "[index]" at its end, and that index (0 without brackets).
struct IndexedName {
    std::string_view name;
    unsigned index = 0;
};

/// False if the name ends in "]" without an index before it.
bool splitIndex(std::string_view text, IndexedName& result);

/// Throws an Exception that begins with `place` if the index is greater than the readers allow.
void checkIndex(unsigned index, std::string_view path, const std::string& place);

} // namespace Orvil::ConfigurationReading
