// SPDX-License-Identifier: MIT
// The one place that words the failures of the protocol sources.
#pragma once

#include "misc/exception.h"

#include <cstdint>
#include <string>

namespace Protocol {

/// `line` is a fixed number, so that a report names the same failure in every release.
inline Orvil::Exception failure(const std::string& message, std::uint32_t line) {
    return {message, "source/common/protocol", line, ""};
}

} // namespace Protocol
