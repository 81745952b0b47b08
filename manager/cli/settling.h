// SPDX-License-Identifier: MIT
// The second step of a change of what is active, left to a process of its own, so that a command
// need not wait for it.
#pragma once

#include "manager/activation/activation.h"

#include <span>
#include <string>
#include <vector>

namespace manager {

/// Starts a process that settles these containers' folders a second from now, and outlives this
/// one. When none can be started, that is told and the next server settles.
void settleLater(std::span<const ContainerId> changed);

/// What that process does.
int settleCommand(const Places& places, const std::vector<std::string>& words);

} // namespace manager
