// SPDX-License-Identifier: MIT
// Where a font that is lacking can be had.
#pragma once

#include "manager/library/places.h"

#include <string>
#include <vector>

namespace manager {

/// The address, if it is one of the web that a browser may be given; else nothing.
[[nodiscard]] std::string webAddress(const std::string& text);

/// Opens in the user's browser, for each font, the page of its maker, which a face of the same
/// family in the library tells; else a search for it. `asked`: for the fonts of a plug-in's
/// command, which is read from standard input. An ExitStatus; throws Error.
int buyCommand(const Places& places, const std::vector<std::string>& names, bool asked, bool json);

} // namespace manager
