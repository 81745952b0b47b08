// SPDX-License-Identifier: MIT
// The commands that concern what is active: activate, deactivate, change.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/places.h"

#include <string>
#include <vector>

namespace manager {

/// Each returns an ExitStatus and throws Error, tells others, and leaves what is due a second later
/// to a process of its own. Their documents tell in "changes" what has become of which set.
/// `reason`: by hand, for a time or until logout.
int activateCommand(const Places& places, const std::vector<std::string>& names,
                    const Reason& reason, bool json);
int deactivateCommand(const Places& places, const std::vector<std::string>& names, bool all,
                      bool json);
/// Makes changes of sets that come on standard input, as the documents tell them; taken the other
/// way round they take back what was switched, and nothing that has come since. A reason that does
/// not stand any more is not given back.
int changeCommand(const Places& places, bool json);

} // namespace manager
