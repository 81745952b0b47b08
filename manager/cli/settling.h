// SPDX-License-Identifier: MIT
// What comes after a change of what is active, left to processes of their own, so that nobody waits
// for it.
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

/// Has GTK programs on the display look at their fonts, now and once the folder of the active ones
/// has been marked anew: the first time they empty their lists before fontconfig has read what is
/// new, so it takes two. Done by a process of its own, and where a settings daemon runs by that.
void tellDisplay();
int kickCommand();

} // namespace manager
