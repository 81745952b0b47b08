// SPDX-License-Identifier: MIT
// Names that end in an index, as the readers of configurations have them.
#pragma once

#include <string_view>

namespace Orvil::ConfigurationReading {

/// A name without the "[index]" at its end, and that index (0 without brackets).
struct IndexedName {
    std::string_view name;
    unsigned index = 0;
};

/// An index up to IConfigurationReader::greatestIndex. False, with `index` 0, if the text is not
/// one.
[[nodiscard]] bool readIndex(std::string_view text, unsigned& index);

/// False if the name ends in "]" without such an index before it.
[[nodiscard]] bool splitIndex(std::string_view text, IndexedName& result);

} // namespace Orvil::ConfigurationReading
