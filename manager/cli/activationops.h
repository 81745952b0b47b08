// SPDX-License-Identifier: MIT
// The commands that concern what is active: activate, deactivate, status, history.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/places.h"

#include <string>
#include <vector>

namespace manager {

/// Each returns an ExitStatus and throws Error. The changing ones tell others, and leave what is
/// due a second later to a process of its own.
/// `reason`: by hand, for a time or until logout.
int activateCommand(const Places& places, const std::vector<std::string>& names,
                    const Reason& reason, bool json);
int deactivateCommand(const Places& places, const std::vector<std::string>& names, bool all,
                      bool json);
int statusCommand(const Places& places, bool json);
int historyCommand(const Places& places, bool all, bool json);

} // namespace manager
