// SPDX-License-Identifier: MIT
// The command `collect`.
#pragma once

#include "manager/library/places.h"

#include <string>
#include <vector>

namespace manager {

/// Copies the containers' files into the new folder `to`, one folder each, with a list of what
/// their makers allow. The folder appears when all is in it. Returns an ExitStatus. Throws Error: a
/// folder of this name is there already, or it cannot be written.
int collectCommand(const Places& places, const std::vector<std::string>& names,
                   const std::string& to, bool json);

} // namespace manager
