// SPDX-License-Identifier: MIT
// Where the plug-in is when nobody says so.
#pragma once

#include <filesystem>
#include <optional>

namespace host {

/// $GLYPHORA_PLUGIN, else Glyphora.aip beside the program, in the folder above (the build tree), or
/// in ../lib/glyphora (installed). Nothing when there is none; what the variable names is not
/// looked at.
std::optional<std::filesystem::path> findPlugin();
/// The same for a program in `programFolder`, without the variable.
std::optional<std::filesystem::path> findPluginNear(const std::filesystem::path& programFolder);

} // namespace host
