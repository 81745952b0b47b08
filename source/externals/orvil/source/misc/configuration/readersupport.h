// SPDX-License-Identifier: MIT
// What the readers of configurations share: names that end in an index, and storing what they name.
#pragma once

#include "misc/configuration/configuration.h"

#include <cstddef>
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

/// Stores the values of one source. Values that would fill the memory out of a small source are
/// refused: see IConfigurationReader.
class ValueWriter {
public:
    explicit ValueWriter(Configuration& configuration) : configuration_(configuration) {}

    /// As Configuration::setValueAt. Throws an Exception that begins with `place`.
    void setValueAt(std::string_view path, unsigned index, std::string value,
                    const std::string& place);

private:
    Configuration& configuration_;
    std::size_t added_ = 0;
};

} // namespace Orvil::ConfigurationReading
