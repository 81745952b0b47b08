// SPDX-License-Identifier: MIT
// The plug-in's trace, kept instead of discarded.
#pragma once

#include <string>
#include <vector>

/// "CONTEXT: TEXT" of every message since the last call; takes them.
std::vector<std::string> takeTrace();
