// SPDX-License-Identifier: MIT
// The commands that tell of the state: status, history.
#pragma once

#include "manager/library/places.h"

namespace manager {

/// Each returns an ExitStatus and throws Error.
int statusCommand(const Places& places, bool json);
int historyCommand(const Places& places, bool all, bool json);

} // namespace manager
