// SPDX-License-Identifier: MIT
// The commands that concern what is active: activate, deactivate, restore.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/places.h"

#include <string>
#include <vector>

namespace manager {

/// Each returns an ExitStatus and throws Error, tells others, and leaves what is due a second later
/// to a process of its own. Their documents tell in "changes" what reasons came and went.
/// `reason`: by hand, for a time or until logout.
int activateCommand(const Places& places, const std::vector<std::string>& names,
                    const Reason& reason, bool json);
int deactivateCommand(const Places& places, const std::vector<std::string>& names, bool all,
                      bool json);
/// Makes changes of reasons that come on standard input, as the other two tell them, each with the
/// "id" of its container: takes back what was activated, gives back what was deactivated, and
/// leaves what others have made of it meanwhile. A reason that does not stand any more is not given
/// back.
int restoreCommand(const Places& places, bool json);

} // namespace manager
